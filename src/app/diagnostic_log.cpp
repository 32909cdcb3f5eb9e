#include "app/diagnostic_log.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>
#include <vector>

namespace app {
namespace {

// Drops the older half of a log that has grown too long, up to the end of a line.
void cut(files::File& log) {
    const std::uint64_t size = log.size();
    std::vector<std::byte> newer(Diagnostic_Log::max_size / 2);
    newer.resize(log.read_at(size - newer.size(), newer));
    const auto line_end = std::find(newer.begin(), newer.end(), std::byte{'\n'});
    newer.erase(newer.begin(), line_end == newer.end() ? newer.end() : line_end + 1);
    log.resize(0);
    log.write_at(0, newer);
}

void append(files::File& log, const QByteArray& line) {
    if (log.size() + static_cast<std::uint64_t>(line.size()) > Diagnostic_Log::max_size &&
        log.size() > Diagnostic_Log::max_size / 2) {
        cut(log);
    }
    log.write_at(log.size(), std::as_bytes(std::span(line.data(), std::size_t(line.size()))));
}

} // namespace

Diagnostic_Log::Diagnostic_Log(files::Disk& disk, QString path, timing::Time& time)
    : disk_(disk), path_(std::move(path)), time_(time) {}

bool Diagnostic_Log::write(const QString& line) noexcept {
    try {
        const std::string name = path_.toStdString();
        const bool there = disk_.file_exists(name);
        const auto log =
            disk_.open(name, there ? files::Access::read_write : files::Access::create_new);
        if (!log->lock(files::Lock::exclusive, std::chrono::milliseconds(200))) return true; // busy
        const QString time = time_.date().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss "));
        append(*log, (time + line.simplified() + u'\n').toUtf8());
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace app
