#include "platform/jet/catalogue/properties.h"

#include "platform/jet/format/text.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::size_t block_head = 6;  // length, kind
constexpr std::size_t record_head = 8; // length, of_definition, type, name, value size
constexpr std::uint16_t names_kind = 0x80;

void append(Bytes& into, const Bytes& bytes) {
    into.insert(into.end(), bytes.begin(), bytes.end());
}

void append_number(Bytes& into, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i, number >>= 8U)
        into.push_back(static_cast<std::byte>(number));
}

Bytes block_of(std::uint16_t kind, const Bytes& body) {
    Bytes block;
    append_number(block, block_head + body.size(), 4);
    append_number(block, kind, 2);
    append(block, body);
    return block;
}

Bytes names_block(const std::vector<std::u16string>& names) {
    Bytes body;
    for (const auto& name : names) {
        append_number(body, 2 * name.size(), 2);
        append(body, encode_plain(name));
    }
    return block_of(names_kind, body);
}

Bytes encode_block(const Property_Block& block) {
    if (!block.stored.empty()) return block.stored;
    Bytes body;
    append_number(body, 6 + 2 * block.owner.size(), 4);
    append_number(body, 2 * block.owner.size(), 2);
    append(body, encode_plain(block.owner));
    for (const auto& property : block.properties) {
        append_number(body, record_head + property.value.size(), 2);
        append_number(body, property.of_definition ? 1 : 0, 1);
        append_number(body, property.type, 1);
        append_number(body, property.name, 2);
        append_number(body, property.value.size(), 2);
        append(body, property.value);
    }
    return block_of(block.kind, body);
}

bool signature_fits(const View& view, bool jet3) {
    return view.u32(0) == (jet3 ? 0x00444B4BU : 0x0032524DU); // "KKD", "MR2"
}

} // namespace

Properties::Properties(const Bytes& stored, Page_Number page, bool jet3) : jet3_(jet3) {
    if (stored.empty()) return;
    const View view(stored, page);
    if (!signature_fits(view, jet3)) view.fail("properties without their mark");
    for (std::size_t at = 4; at < view.size();) {
        const std::size_t length = view.u32(at);
        if (length < block_head) view.fail("a block of properties that is too short");
        const auto block = view.part(at, length);
        const auto kind = block.u16(4);
        if (kind == names_kind)
            parse_names(block.part(block_head, length - block_head));
        else
            parse_block(block, kind);
        at += length;
    }
}

std::u16string Properties::decode(std::span<const std::byte> stored) const {
    std::u16string text;
    if (jet3_) {
        decode_ansi(stored, text);
        return text;
    }
    text.resize(stored.size() / 2);
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = load_u16(stored.data() + 2 * i);
    return text;
}

void Properties::parse_names(const View& body) {
    for (std::size_t at = 0; at < body.size();) {
        const std::size_t length = body.u16(at);
        names_.push_back(decode(body.part(at + 2, length).bytes()));
        at += 2 + length;
    }
}

void Properties::parse_block(const View& block, std::uint16_t kind) {
    Property_Block found;
    found.kind = kind;
    found.stored.assign(block.bytes().begin(), block.bytes().end());
    const std::size_t owner_part = block.u32(block_head);
    found.owner = decode(block.part(block_head + 6, block.u16(block_head + 4)).bytes());
    if (owner_part < 6) block.fail("a block of properties without an owner");
    for (std::size_t at = block_head + owner_part; at < block.size();) {
        const std::size_t length = block.u16(at);
        if (length < record_head) block.fail("a property that is too short");
        const auto record = block.part(at, length);
        const auto value = record.part(record_head, record.u16(6)).bytes();
        found.properties.push_back(
            {record.u8(2) != 0, record.u8(3), record.u16(4), Bytes(value.begin(), value.end())});
        at += length;
    }
    blocks_.push_back(std::move(found));
}

const Property* Properties::find(std::u16string_view column, std::u16string_view name) const {
    for (const auto& block : blocks_) {
        if (block.kind == 0 || !same_name(block.owner, column)) continue;
        for (const auto& property : block.properties)
            if (property.name < names_.size() && names_[property.name] == name) return &property;
    }
    return nullptr;
}

std::optional<bool> Properties::boolean(std::u16string_view column,
                                        std::u16string_view name) const {
    const auto* property = find(column, name);
    if (property == nullptr || property->value.empty()) return std::nullopt;
    return property->value.front() != std::byte{0};
}

std::u16string Properties::text(std::u16string_view column, std::u16string_view name) const {
    const auto* property = find(column, name);
    const auto holds_text = [](std::uint8_t type) {
        return type == static_cast<std::uint8_t>(Column_Type::text) ||
               type == static_cast<std::uint8_t>(Column_Type::memo);
    };
    return property != nullptr && holds_text(property->type) ? decode(property->value) : u"";
}

std::uint16_t Properties::name_number(std::u16string_view name) {
    const auto found = std::find(names_.begin(), names_.end(), name);
    const auto number = static_cast<std::uint16_t>(found - names_.begin());
    if (found == names_.end()) names_.emplace_back(name);
    return number;
}

void Properties::add(std::u16string_view column, std::u16string_view name, Property property) {
    property.name = name_number(name);
    auto block = std::find_if(blocks_.begin(), blocks_.end(), [&](const Property_Block& b) {
        return b.kind != 0 && b.stored.empty() && same_name(b.owner, column);
    });
    if (block == blocks_.end()) block = blocks_.insert(block, {1, std::u16string(column), {}, {}});
    block->properties.push_back(std::move(property));
}

void Properties::add_boolean(std::u16string_view column, std::u16string_view name, bool value) {
    add(column, name,
        {true, static_cast<std::uint8_t>(Column_Type::boolean), 0, {std::byte{value}}});
}

void Properties::add_text(std::u16string_view column, std::u16string_view name,
                          std::u16string_view value, bool of_definition) {
    add(column, name,
        {of_definition, static_cast<std::uint8_t>(Column_Type::memo), 0, encode_plain(value)});
}

void Properties::remove_column(std::u16string_view column) {
    std::erase_if(blocks_, [&](const Property_Block& block) {
        return block.kind != 0 && same_name(block.owner, column);
    });
}

Bytes Properties::stored() const {
    if (blocks_.empty()) return {};
    Bytes whole;
    append_number(whole, 0x0032524D, 4);
    append(whole, names_block(names_));
    for (const auto& block : blocks_) append(whole, encode_block(block));
    return whole;
}

} // namespace jet
