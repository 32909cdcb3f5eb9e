// The map of CV values of 200 sets with 1,000 CVs each, written by our writer and by msgpack-cxx:
// with each page handed over at once, and byte by byte.

#include "export/msgpack/cls_wr_msgpack.h"

#include <benchmark/benchmark.h>
#include <msgpack.hpp>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

struct Page {
    std::uint8_t high, low;
    std::vector<std::uint8_t> pairs;
};

struct Set {
    std::int32_t reset_cv, number;
    std::vector<Page> pages;
};

std::vector<Set> library() {
    std::vector<Set> sets;
    for (int i = 0; i < 200; ++i) {
        Set set{i % 2 == 0 ? 8 : 265, i, {{0, 0, {}}, {0, 2, {}}, {0, 3, {}}, {145, 2, {}}}};
        for (int cv = 0; cv < 1000; ++cv) {
            auto& pairs = set.pages[static_cast<std::size_t>(cv / 256)].pairs;
            pairs.push_back(static_cast<std::uint8_t>(cv));
            pairs.push_back(static_cast<std::uint8_t>(cv * 7 + i));
        }
        sets.push_back(std::move(set));
    }
    return sets;
}

enum class Payload { at_once, bytewise };

void write(msgpack::cls_wr_msgpack& out, const std::vector<Set>& sets, Payload payload) {
    out.Add_Map(sets.size());
    for (const auto& set : sets) {
        out.Add_ItemArray(2);
        out.Add_Int(set.reset_cv);
        out.Add_Int(set.number);
        out.Add_Map(set.pages.size());
        for (const auto& page : set.pages) {
            out.Add_ItemArray(2);
            out.Add_Int(page.high);
            out.Add_Int(page.low);
            out.Add_ByteArray(page.pairs.size());
            if (payload == Payload::at_once)
                out.Add_Bytes_to_Array(page.pairs);
            else
                for (const auto byte : page.pairs) out.Add_Byte_to_Array(byte);
        }
    }
}

void write(msgpack::sbuffer& buffer, const std::vector<Set>& sets, Payload payload) {
    msgpack::packer<msgpack::sbuffer> out(buffer);
    out.pack_map(static_cast<std::uint32_t>(sets.size()));
    for (const auto& set : sets) {
        out.pack_array(2);
        out.pack(set.reset_cv);
        out.pack(set.number);
        out.pack_map(static_cast<std::uint32_t>(set.pages.size()));
        for (const auto& page : set.pages) {
            out.pack_array(2);
            out.pack(page.high);
            out.pack(page.low);
            const auto* bytes = reinterpret_cast<const char*>(page.pairs.data());
            const auto count = static_cast<std::uint32_t>(page.pairs.size());
            out.pack_bin(count);
            if (payload == Payload::at_once)
                out.pack_bin_body(bytes, count);
            else
                for (std::uint32_t i = 0; i < count; ++i) out.pack_bin_body(bytes + i, 1);
        }
    }
}

template <typename Writer>
void run(benchmark::State& state, Payload payload) {
    const auto sets = library();
    std::size_t size = 0;
    for (auto unused : state) {
        Writer writer;
        write(writer, sets, payload);
        size = writer.size();
        benchmark::DoNotOptimize(size);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

void same_bytes_or_end() {
    const auto sets = library();
    msgpack::cls_wr_msgpack ours;
    msgpack::sbuffer theirs;
    write(ours, sets, Payload::at_once);
    write(theirs, sets, Payload::at_once);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(theirs.data());
    if (std::equal(ours.bytes().begin(), ours.bytes().end(), bytes, bytes + theirs.size())) return;
    std::cerr << "the two writers make different bytes\n";
    std::exit(1);
}

template <typename Writer>
void add(const char* name, Payload payload) {
    benchmark::RegisterBenchmark(name, run<Writer>, payload);
}

} // namespace

int main(int argc, char** argv) {
    same_bytes_or_end();
    add<msgpack::cls_wr_msgpack>("msgpack_ours", Payload::at_once);
    add<msgpack::sbuffer>("msgpack_cxx", Payload::at_once);
    add<msgpack::cls_wr_msgpack>("msgpack_ours_bytewise", Payload::bytewise);
    add<msgpack::sbuffer>("msgpack_cxx_bytewise", Payload::bytewise);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
