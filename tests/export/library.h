#pragma once

#include "export/export_project.h"
#include "platform/files/memory_disk.h"
#include "scripts/cls_Script_Sets.h"
#include "store/cls_Sets_Coll.h"

/// A library in memory, its scripts, and a disk for the project file.
struct Library {
    store::cls_Sets_Coll sets;
    scripts::cls_Script_Sets script_sets;
    files::Memory_Disk disk;

    static constexpr const char* path = "/out.vqx";

    store::cls_CV_Set& add_set(std::int32_t id, std::int16_t reset_cv, std::int16_t number) {
        sets.Add_CVSet(QStringLiteral("Set %1").arg(id), reset_cv, number, id);
        return *sets.Item(sets.Count());
    }

    /// `Nummer` of the entry is deliberately one that no set has: the set's own counts.
    scripts::cls_script_coll& add_scripts(std::int32_t id, int scripts, int lines = 0) {
        const auto entry = std::make_shared<scripts::cls_script_coll>();
        entry->Nummer = 99;
        for (int i = 0; i < scripts; ++i) entry->AddScript().StateCount = lines;
        script_sets.Add(entry, QString::number(id));
        return *entry;
    }

    vqx_export::Report save(vqx_export::File_Type type = vqx_export::File_Type::user) {
        return vqx_export::export_project(sets, script_sets, type, disk, path);
    }

    std::vector<std::uint8_t> file() const {
        std::vector<std::uint8_t> numbers;
        for (const auto byte : disk.bytes(path))
            numbers.push_back(std::to_integer<std::uint8_t>(byte));
        return numbers;
    }
};
