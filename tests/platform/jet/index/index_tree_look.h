#pragma once

#include "platform/jet/pages/tiny_pager.h"

#include <string>
#include <vector>

/// Reads an index tree of a Jet 4 file with code of its own and notes all that is not as it must
/// be.
struct Tree_Look {
    using Bytes = std::vector<std::byte>;

    Tree_Look(jet::Pager& pager, jet::Page_Number table, jet::Page_Number root,
              bool lenient = false);

    std::vector<Bytes> entries; ///< of the leaves, whole
    std::vector<jet::Page_Number> pages;
    std::vector<std::string> faults;
    std::size_t depth = 0;

private:
    struct Node {
        std::vector<Bytes> entries;
        jet::Page_Number previous, next, tail;
        bool leaf;
    };
    Node decode(jet::Page_Number number);
    Bytes walk(jet::Page_Number number, std::size_t level);
    void check_siblings(const std::vector<jet::Page_Number>& children);
    void fault(jet::Page_Number page, const std::string& what) {
        faults.push_back("page " + std::to_string(page) + ": " + what);
    }

    jet::Pager& pager_;
    jet::Page_Number table_;
    bool lenient_; ///< other programs may compress more or less than we do
    std::vector<jet::Page_Number> leaves_;
};
