#pragma once

#include "vqx_dump/project.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

/// The entries of a map as they stand there, doubles too.
template <class Key, class Value>
struct Entries : std::vector<std::pair<Key, Value>> {
    using std::vector<std::pair<Key, Value>>::vector;
    void msgpack_unpack(const msgpack::object& map) {
        if (map.type != msgpack::type::MAP) throw msgpack::type_error();
        for (const auto& entry : map.via.map)
            this->emplace_back(entry.key.template as<Key>(), entry.val.template as<Value>());
    }
};

/// What a project file holds, read with a foreign MessagePack reader. Where everything stands and in
/// which form is held against the description by vqx_dump, which shares no code with the writer.
struct Read_Vqx {
    using Bytes = std::vector<std::uint8_t>;
    using Pair = std::array<int, 2>;
    using Pages = Entries<Pair, Bytes>;
    using Sets = Entries<Pair, Pages>; // by reset CV and number
    using Blocks = Entries<int, Bytes>;

    bool oem = false;
    Sets sets;
    std::optional<Blocks> blocks; ///< nothing where the directory names no scripts

    explicit Read_Vqx(const Bytes& file) {
        vqx_dump::Findings findings;
        oem = vqx_dump::read_project(file, findings).oem;
        EXPECT_EQ(findings.inconsistencies(), 0U) << vqx_dump::findings_text(findings);
        body_.assign(file.begin() + 128, file.end());
        using Addresses = Entries<std::uint32_t, std::uint32_t>;
        if (oem) next<Addresses>();
        const bool has_scripts = next<Addresses>().size() == 2;
        sets = next<Sets>();
        if (!has_scripts) return;
        blocks.emplace();
        for (const auto& [number, place] : next<Entries<int, Pair>>()) {
            const auto block = body_.begin() + static_cast<std::ptrdiff_t>(at_);
            blocks->emplace_back(number, Bytes(block, block + place[1]));
            at_ += static_cast<std::size_t>(place[1]);
        }
    }

private:
    template <class Type>
    Type next() {
        const auto* start = reinterpret_cast<const char*>(body_.data());
        return msgpack::unpack(start, body_.size(), at_).get().template as<Type>();
    }

    Bytes body_;
    std::size_t at_ = 0;
};

/// "82 CE" as bytes.
inline std::vector<std::uint8_t> hex(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::uint8_t> bytes;
    for (unsigned value = 0; stream >> std::hex >> value;)
        bytes.push_back(static_cast<std::uint8_t>(value));
    return bytes;
}
