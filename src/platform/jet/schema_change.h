#pragma once

#include "platform/jet/catalogue/definition_builder.h"
#include "platform/jet/catalogue_writer.h"
#include "platform/jet/engine.h"

#include <span>
#include <string_view>
#include <vector>

namespace jet {

/// What is checked before every change of structure; both throw Error.
void check_catalogue(Engine& engine); ///< its own indexes must be ones that we can keep
void check_name_free(Engine& engine, std::u16string_view name, std::int32_t container);

/// A tree with the entries given, entered in the definition. @return its number.
std::uint32_t add_tree(Pager& pager, Page_Space& space, Definition& definition,
                       std::vector<Index_Part> parts, std::uint8_t flags,
                       std::vector<Index_Tree::Entry> entries);

/// Makes tables, and adds to tables that are there, whoever made them. As with Statement, first
/// everything is checked (the constructor), then apply() changes the file.
class New_Table {
public:
    New_Table(Engine& engine, std::u16string_view name, std::span<const Column> columns,
              std::span<const Index> indexes);
    /// @return the page of its definition.
    Page_Number apply();

private:
    void add_columns(Definition& definition, Page_Space& space);
    void add_index(Definition& definition, Page_Space& space, const Index& index);

    Engine& engine_;
    std::u16string name_;
    std::vector<Column> columns_;
    std::vector<Index> indexes_;
};

class New_Column {
public:
    New_Column(Engine& engine, Page_Number table, const Column& column);
    void apply();

private:
    void rewrite_rows(const Definition& before);

    Engine& engine_;
    Page_Number table_;
    Column column_;
};

class New_Index {
public:
    New_Index(Engine& engine, Page_Number table, const Index& index);
    void apply();

private:
    Engine& engine_;
    Page_Number table_;
    Index index_;
    std::vector<Index_Tree::Entry> entries_;
};

class New_Relation {
public:
    New_Relation(Engine& engine, const Relation& relation);
    void apply();

private:
    void check_indexes(const Table_State& table, const Table_State& foreign);
    void check_rows(const Table_State& table, const Table_State& foreign);
    void add_indexes();

    Engine& engine_;
    Relation relation_;
    Page_Number table_ = 0;
    Page_Number foreign_table_ = 0;
    std::vector<Index_Part> columns_;
    std::vector<Index_Part> foreign_columns_;
    std::vector<Index_Tree::Entry> entries_; ///< of the referring side, where it needs a tree
    bool one_to_one_ = false;
};

} // namespace jet
