#include "platform/jet/check/properties.h"

#include "platform/jet/check/value.h"

namespace jet::check {

namespace {

constexpr std::uint32_t jet3_mark = 0x00444B4B, jet4_mark = 0x0032524D; // "KKD", "MR2"
enum Block : std::uint32_t { of_object = 0, of_column = 1, names = 0x80 };
constexpr std::size_t mark_bytes = 4, block_head = 6, record_head = 8;

/// Goes through the blocks of a blob; stops at the first that does not fit.
class Reader {
public:
    Reader(Inspection& inspection, Bytes blob, Definition& table)
        : inspection_(inspection), blob_(blob), table_(table) {}

    void read() {
        if (blob_.u32(0) != (inspection_.format.jet4 ? jet4_mark : jet3_mark))
            return fault(What::property_block, "do not begin with their mark");
        for (std::size_t at = mark_bytes; at < blob_.size();) {
            const std::uint32_t length = blob_.u32(at);
            if (length < block_head || !blob_.has(at, length))
                return fault(What::property_block, words("have a block of ", length, " bytes at ",
                                                         at, " of ", blob_.size()));
            if (!read_block(blob_.u16(at + 4), blob_.part(at + block_head, length - block_head)))
                return;
            at += length;
        }
    }

private:
    void fault(What what, const std::string& why) {
        inspection_.findings.fault(what, table_.page,
                                   words(table_.words, ": its properties ", why, "."));
    }

    bool read_block(std::uint32_t kind, Bytes body) {
        return kind == names ? read_names(body) : read_owner(kind, body);
    }

    std::u16string text(Bytes bytes) const {
        std::u16string out;
        const std::size_t width = inspection_.format.jet4 ? 2 : 1;
        for (std::size_t i = 0; i + width <= bytes.size(); i += width)
            out += static_cast<char16_t>(width == 2 ? bytes.u16(i) : bytes.u8(i));
        return out;
    }

    bool read_names(Bytes body) {
        for (std::size_t at = 0; at < body.size();) {
            const std::uint32_t length = body.u16(at);
            if (!body.has(at, 2 + std::size_t{length})) {
                fault(What::property_block, "have a name that is longer than their list of names");
                return false;
            }
            names_.push_back(text(body.part(at + 2, length)));
            at += 2 + std::size_t{length};
        }
        return true;
    }

    bool read_owner(std::uint32_t kind, Bytes body) {
        const std::uint32_t part = body.u32(0), length = body.u16(4);
        if (part != block_head + length || part > body.size()) {
            fault(What::property_block, "have a block whose name does not fit it");
            return false;
        }
        const std::u16string name = text(body.part(block_head, length));
        Column* column = nullptr;
        if (kind == of_column) {
            const auto found = std::ranges::find_if(
                table_.columns, [&](const Column& c) { return same_name(c.name, name); });
            if (found != table_.columns.end()) column = &*found;
            if (column == nullptr)
                inspection_.findings.warning(What::property_column, table_.page,
                                             words(table_.words, " has properties for column ",
                                                   quoted(name), ", which is not there."));
        }
        return read_records(column, body.from(part));
    }

    bool read_records(Column* column, Bytes records) {
        for (std::size_t at = 0; at < records.size();) {
            const std::uint32_t length = records.u16(at), size = records.u16(at + 6);
            if (length != record_head + size || !records.has(at, length)) {
                fault(What::property_block, "have a record that does not fit its block");
                return false;
            }
            const std::uint32_t number = records.u16(at + 4);
            if (number >= names_.size()) {
                fault(What::property_name, words("use the name ", number, " of ", names_.size()));
                return false;
            }
            if (column != nullptr && records.u8(at + 3) == column_type::boolean && size > 0)
                note(*column, names_[number], records.u8(at + record_head) != 0);
            at += length;
        }
        return true;
    }

    static void note(Column& column, const std::u16string& name, bool value) {
        if (name == u"Required") column.required = value;
        if (name == u"AllowZeroLength") column.empty_text_forbidden = !value;
    }

    Inspection& inspection_;
    Bytes blob_;
    Definition& table_;
    std::vector<std::u16string> names_;
};

} // namespace

void read_properties(Inspection& inspection, Bytes blob, Definition& table) {
    Reader(inspection, blob, table).read();
}

} // namespace jet::check
