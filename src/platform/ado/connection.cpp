#include "platform/ado/connection.h"

#include "platform/ado/error.h"

using namespace Qt::Literals::StringLiterals;

namespace ado {

namespace {

QString head() { return u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source="_s; }
QString tail() { return u";Persist Security Info=False"_s; }

} // namespace

QString Connection::string_for(const QString& path) { return head() + path + tail(); }

void Connection::open(const QString& connection_string) {
    close();
    if (!connection_string.startsWith(head()) || !connection_string.endsWith(tail()))
        throw Error(Failure::statement, connection_string.toStdString(),
                    "this connection string is not understood");
    const QString path =
        connection_string.sliced(head().size()).chopped(tail().size()); // may hold a semicolon
    session_ = std::make_unique<Session>(
        jet::Database::open(disk_, path.toStdString(), jet::Mode::read_write));
    session_->watcher = watcher_;
}

void Connection::close() { session_.reset(); }

Status Connection::status() const { return session().database().status(); }

std::uint64_t Connection::foreign_changes() const { return session().database().foreign_changes(); }

Blocked Connection::blocked(const QString& table) const {
    const auto found = session().database().table(table.toStdU16String());
    return found ? found->blocked() : session().database().status().blocked;
}

void Connection::watch(Row_Watcher* watcher) {
    watcher_ = watcher;
    if (session_) session_->watcher = watcher;
}

Session& Connection::session() const {
    if (!session_) throw Error(Failure::not_open, "connection", "is not open");
    return *session_;
}

Transaction::Transaction(Connection& connection) : session_(connection.session()) {
    changes_.emplace(session_.database());
    session_.enter(Extent::some);
}

Transaction::~Transaction() {
    changes_.reset();
    if (!committed_ && !session_.database().in_transaction()) session_.forget_held();
    session_.leave(Extent::some);
}

void Transaction::commit() {
    changes_->commit();
    committed_ = true;
}

Reading::Reading(const Connection& connection, Extent extent)
    : session_(connection.session()), extent_(extent) {
    guard_.emplace(session_.database());
    session_.enter(extent);
}

Reading::~Reading() {
    guard_.reset();
    session_.leave(extent_);
}

} // namespace ado
