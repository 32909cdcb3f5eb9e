#include "platform/jet/catalogue/definition_chain.h"

#include <set>

namespace jet {
namespace {

constexpr std::size_t longest_definition = std::size_t{1} << 20U;

} // namespace

Record joined_chain(Pager& pager, const Layout& layout, Page_Number first,
                    std::vector<Page_Number>* chain) {
    Record joined;
    std::size_t length = 0;
    std::set<Page_Number> seen;
    for (Page_Number number = first; number != 0;) {
        const Page page = pager.read(number);
        const View view(*page, number);
        if (view.u8(0) != 2) view.fail("is no table definition");
        if (!seen.insert(number).second) view.fail("the chain of a definition runs in a circle");
        if (number == first) {
            length = view.u32(8);
            if (length < layout.blocks || length > longest_definition)
                view.fail("a definition of impossible length");
            joined = *page;
        } else {
            joined.insert(joined.end(), page->begin() + definition_page_head, page->end());
        }
        if (chain != nullptr) chain->push_back(number);
        number = joined.size() < length ? view.u32(4) : 0;
    }
    if (joined.size() < length) throw damaged(first, "a definition is shorter than its length");
    joined.resize(length);
    return joined;
}

Definition read_definition(Pager& pager, const Layout& layout, Page_Number first) {
    std::vector<Page_Number> chain;
    auto definition = parse_definition(layout, first, joined_chain(pager, layout, first, &chain));
    definition.chain = std::move(chain);
    return definition;
}

} // namespace jet
