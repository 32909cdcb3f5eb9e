#include "platform/jet/check/catalogue.h"

namespace jet::check {

namespace {

class Catalogue_Rules {
public:
    Catalogue_Rules(Inspection& inspection, const Catalogue& catalogue)
        : inspection_(inspection), catalogue_(catalogue) {
        for (const Object& object : catalogue.objects) ids_.insert(object.id);
    }

    void check() {
        check_containers();
        check_relation_objects();
        if (catalogue_.has_rights) check_rights();
    }

private:
    static constexpr std::uint32_t objects_page = 2;

    void warning(What what, const std::string& sentence) {
        inspection_.findings.warning(what, objects_page, sentence);
    }

    void check_containers() {
        struct Container {
            std::uint32_t id, parent, type;
            std::u16string_view name;
        };
        constexpr Container expected[] = {
            {Object::tables, Object::root, Object::container, u"Tables"},
            {Object::databases, Object::root, Object::container, u"Databases"},
            {Object::relations, Object::root, Object::container, u"Relationships"}};
        for (const Container& container : expected)
            if (std::ranges::none_of(catalogue_.objects, [&](const Object& object) {
                    return object.id == container.id && object.parent == container.parent &&
                           object.type == container.type && same_name(object.name, container.name);
                }))
                inspection_.findings.fault(
                    What::catalogue_container, objects_page,
                    words("The catalogue has no container ", quoted(container.name), "."));
        if (std::ranges::none_of(catalogue_.objects, [](const Object& object) {
                return object.parent == Object::databases && object.type == Object::database;
            }))
            warning(What::catalogue_container, "The catalogue has no entry 'MSysDb'.");
    }

    bool has_rows(std::u16string_view relation) const {
        return std::ranges::any_of(catalogue_.relation_rows, [&](const Relation_Row& row) {
            return same_name(row.relation, relation);
        });
    }

    bool has_object(std::u16string_view relation) const {
        return std::ranges::any_of(catalogue_.objects, [&](const Object& object) {
            return object.type == Object::relation && same_name(object.name, relation);
        });
    }

    void check_relation_objects() {
        for (const Object& object : catalogue_.objects)
            if (object.type == Object::relation && !has_rows(object.name))
                warning(What::relation_object, words("Relation ", quoted(object.name),
                                                     " has no row in MSysRelationships."));
        for (const Relation_Row& row : catalogue_.relation_rows)
            if (row.position == 0 && !has_object(row.relation))
                warning(What::relation_object, words("Relation ", quoted(row.relation),
                                                     " is missing in the catalogue MSysObjects."));
    }

    void check_rights() {
        for (const std::uint32_t id : catalogue_.objects_with_rights)
            if (!ids_.contains(id) && id != Object::root)
                warning(What::catalogue_rights,
                        words("MSysACEs has rights for the object ", id, ", which is not there."));
        // Access leaves some of its documents without rights
        for (const Object& object : catalogue_.objects)
            if ((object.type == Object::table || object.type == Object::relation) &&
                !catalogue_.objects_with_rights.contains(object.id))
                warning(What::catalogue_rights,
                        words("MSysACEs has no rights for the object ", quoted(object.name), "."));
    }

    Inspection& inspection_;
    const Catalogue& catalogue_;
    std::set<std::uint32_t> ids_;
};

} // namespace

void check_catalogue(Inspection& inspection, const Catalogue& catalogue) {
    Catalogue_Rules(inspection, catalogue).check();
}

} // namespace jet::check
