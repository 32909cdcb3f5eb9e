#include "platform/jet/rows/page_editor.h"

#include "platform/failure/sure.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t head = jet4_layout.slots;
constexpr std::size_t count_at = jet4_layout.slot_count;
constexpr std::size_t most_slots = 255; // other programs count them in one byte

} // namespace

Page_Editor::Page_Editor(Pager& pager, Page_Number number) : page_(pager.change(number)) {
    bool sound = count() <= most_slots + 1 && head + 2 * count() <= lowest();
    for (std::size_t slot = 0; sound && slot < count(); ++slot) sound = offset(slot) <= end(slot);
    if (!sound) throw damaged(number, "its rows overlap");
}

void Page_Editor::format(std::uint32_t owner) {
    std::fill(page_.begin(), page_.end(), std::byte{0});
    store_u16(page_.data(), page_kinds::data);
    store_u32(page_.data() + 4, owner);
    note_free();
}

std::size_t Page_Editor::count() const { return load_u16(page_.data() + count_at); }

std::size_t Page_Editor::offset(std::size_t slot) const {
    return load_u16(page_.data() + head + 2 * slot) & 0x1FFFU;
}

std::size_t Page_Editor::end(std::size_t slot) const {
    return slot == 0 ? page_.size() : offset(slot - 1);
}

Slot_Kind Page_Editor::kind(std::size_t slot) const {
    return static_cast<Slot_Kind>(load_u16(page_.data() + head + 2 * slot) >> 14U);
}

std::size_t Page_Editor::lowest() const { return end(count()); }

std::size_t Page_Editor::first_deleted() const {
    std::size_t slot = 0;
    while (slot < count() && kind(slot) != Slot_Kind::deleted) ++slot;
    return slot;
}

std::size_t Page_Editor::deleted_bytes() const {
    std::size_t bytes = 0;
    for (std::size_t slot = 0; slot < count(); ++slot)
        if (kind(slot) == Slot_Kind::deleted) bytes += end(slot) - offset(slot);
    return bytes;
}

bool Page_Editor::empty() const {
    for (std::size_t slot = 0; slot < count(); ++slot)
        if (kind(slot) != Slot_Kind::deleted) return false;
    return true;
}

std::size_t Page_Editor::free_bytes() const {
    return lowest() - head - 2 * count() + deleted_bytes();
}

bool Page_Editor::fits(std::size_t length) const {
    const auto slot = first_deleted();
    if (slot >= most_slots) return false;
    return length + (slot == count() ? 2 : 0) <= free_bytes();
}

void Page_Editor::set_slot(std::size_t slot, std::size_t offset, Slot_Kind kind) {
    store_u16(page_.data() + head + 2 * slot, offset | static_cast<std::size_t>(kind) << 14U);
}

/// Moves the rows below, whose slots come after, so that this one gets its new length.
void Page_Editor::resize(std::size_t slot, std::size_t length) {
    const auto begin = offset(slot);
    const auto now_begin = end(slot) - length;
    const auto bottom = lowest();
    std::memmove(page_.data() + (bottom + now_begin - begin), page_.data() + bottom,
                 begin - bottom);
    for (auto other = slot; other < count(); ++other)
        set_slot(other, offset(other) + now_begin - begin, kind(other));
}

/// Other programs leave the bytes of deleted rows where they are.
void Page_Editor::squeeze() {
    for (std::size_t slot = 0; slot < count(); ++slot)
        if (kind(slot) == Slot_Kind::deleted && end(slot) != offset(slot)) resize(slot, 0);
}

void Page_Editor::note_free() { store_u16(page_.data() + 2, lowest() - head - 2 * count()); }

std::optional<std::uint8_t> Page_Editor::add(std::span<const std::byte> row, Slot_Kind kind) {
    if (!fits(row.size())) return std::nullopt;
    squeeze();
    const auto slot = first_deleted();
    if (slot == count()) {
        const auto bottom = lowest();
        store_u16(page_.data() + count_at, slot + 1);
        set_slot(slot, bottom, kind);
    }
    resize(slot, row.size());
    std::copy(row.begin(), row.end(), page_.data() + offset(slot));
    set_slot(slot, offset(slot), kind);
    note_free();
    return static_cast<std::uint8_t>(slot);
}

bool Page_Editor::replace(std::size_t slot, std::span<const std::byte> row, Slot_Kind kind) {
    SURE(slot < count());
    const auto length = end(slot) - offset(slot);
    if (row.size() > length + free_bytes()) return false;
    squeeze();
    resize(slot, row.size());
    std::copy(row.begin(), row.end(), page_.data() + offset(slot));
    set_slot(slot, offset(slot), kind);
    note_free();
    return true;
}

void Page_Editor::remove(std::size_t slot) {
    SURE(slot < count());
    set_slot(slot, offset(slot), Slot_Kind::deleted);
    resize(slot, 0);
    note_free();
}

} // namespace jet
