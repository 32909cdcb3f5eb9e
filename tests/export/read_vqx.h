#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#define MSGPACK_NO_BOOST
#include <msgpack.hpp>

/// A project file taken apart with a foreign MessagePack reader. Every section must begin where the
/// one before ends, and the last must end with the file; anything else fails the test.
struct Read_Vqx {
    using Bytes = std::vector<std::uint8_t>;
    struct Page {
        int high, low;
        Bytes pairs;
        bool operator==(const Page&) const = default;
    };
    struct Set {
        int reset_cv, number;
        std::vector<Page> pages;
        bool operator==(const Set&) const = default;
    };
    struct Block {
        int number;
        Bytes bytes;
        bool operator==(const Block&) const = default;
    };

    std::string magic;
    std::optional<std::uint32_t> ext; ///< of the oem type
    std::vector<Set> sets;
    std::optional<std::vector<Block>> blocks; ///< nothing where the directory names no scripts
    std::size_t body_size = 0;

    explicit Read_Vqx(const Bytes& file) {
        if (file.size() < 128) throw std::runtime_error("no header");
        magic.assign(file.begin(), file.begin() + 2);
        Bytes header(128);
        header[0] = file[0];
        header[1] = file[1];
        header[3] = 2;
        header[5] = 0x80;
        body_size = file.size() - 128;
        for (std::size_t i = 0; i < 4; ++i)
            header[9 + i] = static_cast<std::uint8_t>(body_size >> (24 - 8 * i) & 0xFF);
        EXPECT_EQ(Bytes(file.begin(), file.begin() + 128), header);
        body_.assign(file.begin() + 128, file.end());
        read_body();
    }

private:
    static constexpr std::uint32_t ident(const char* text) {
        std::uint32_t value = 0;
        for (; *text; ++text) value = value << 8 | static_cast<std::uint8_t>(*text);
        return value;
    }

    /// The value at the read position, which moves behind it.
    msgpack::object_handle next() {
        return msgpack::unpack(reinterpret_cast<const char*>(body_.data()), body_.size(), at_);
    }

    static std::vector<std::pair<msgpack::object, msgpack::object>>
    entries(const msgpack::object& map) {
        if (map.type != msgpack::type::MAP) throw msgpack::type_error();
        std::vector<std::pair<msgpack::object, msgpack::object>> found;
        for (const auto& entry : map.via.map) found.emplace_back(entry.key, entry.val);
        return found;
    }

    static Bytes binary(const msgpack::object& object) {
        const auto bytes = object.as<std::vector<char>>();
        return Bytes(bytes.begin(), bytes.end());
    }

    void read_body() {
        if (magic == "QL") {
            const auto main = next();
            const auto fields = entries(main.get());
            ASSERT_EQ(fields.size(), 2U);
            EXPECT_EQ(fields[0].first.as<std::uint32_t>(), ident("main"));
            EXPECT_EQ(fields[0].second.as<std::size_t>(), at_);
            EXPECT_EQ(fields[1].first.as<std::uint32_t>(), ident("ext"));
            ext = fields[1].second.as<std::uint32_t>();
        }
        const auto directory_at = at_;
        const auto directory = next();
        const auto parts = entries(directory.get());
        ASSERT_THAT(parts.size(), testing::AnyOf(1U, 2U));
        EXPECT_EQ(parts[0].first.as<std::uint32_t>(), ident("dcc"));
        EXPECT_EQ(directory_at + parts[0].second.as<std::size_t>(), at_);
        read_sets();
        if (parts.size() == 2) {
            EXPECT_EQ(parts[1].first.as<std::uint32_t>(), ident("scr"));
            EXPECT_EQ(directory_at + parts[1].second.as<std::size_t>(), at_);
            read_blocks();
        }
        EXPECT_EQ(at_, body_.size());
    }

    void read_sets() {
        const auto map = next();
        for (const auto& [key, value] : entries(map.get())) {
            const auto names = key.as<std::vector<int>>();
            ASSERT_EQ(names.size(), 2U);
            auto& set = sets.emplace_back(Set{names[0], names[1], {}});
            for (const auto& [page_key, pairs] : entries(value)) {
                const auto page = page_key.as<std::vector<int>>();
                ASSERT_EQ(page.size(), 2U);
                set.pages.push_back({page[0], page[1], binary(pairs)});
            }
        }
    }

    void read_blocks() {
        blocks.emplace();
        const auto map_at = at_;
        const auto map = next();
        for (const auto& [key, value] : entries(map.get())) {
            const auto place = value.as<std::vector<std::uint32_t>>();
            ASSERT_EQ(place.size(), 2U);
            EXPECT_EQ(map_at + place[0], at_);
            const auto end = at_ + place[1];
            ASSERT_LE(end, body_.size());
            blocks->push_back(
                {key.as<int>(), Bytes(body_.begin() + static_cast<std::ptrdiff_t>(at_),
                                      body_.begin() + static_cast<std::ptrdiff_t>(end))});
            at_ = end;
        }
    }

    Bytes body_;
    std::size_t at_ = 0;
};

inline std::ostream& operator<<(std::ostream& out, const Read_Vqx::Page& page) {
    return out << page.high << ':' << page.low << ' ' << testing::PrintToString(page.pairs);
}

inline std::ostream& operator<<(std::ostream& out, const Read_Vqx::Set& set) {
    return out << '[' << set.reset_cv << ", " << set.number << "] "
               << testing::PrintToString(set.pages);
}

inline std::ostream& operator<<(std::ostream& out, const Read_Vqx::Block& block) {
    return out << block.number << ' ' << testing::PrintToString(block.bytes);
}

/// "82 CE" as bytes.
inline std::vector<std::uint8_t> hex(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::uint8_t> bytes;
    for (unsigned value = 0; stream >> std::hex >> value;)
        bytes.push_back(static_cast<std::uint8_t>(value));
    return bytes;
}
