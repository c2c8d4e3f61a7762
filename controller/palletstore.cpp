#include "palletstore.h"

#include <QAtomicInt>
#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace rc {

namespace {

QAtomicInt connectionCounter;

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

// Rolls back unless committed; keeps every early return of a change safe.
class Transaction
{
public:
    explicit Transaction(QSqlDatabase db) : m_db(db) { m_active = m_db.transaction(); }
    ~Transaction()
    {
        if (m_active)
            m_db.rollback();
    }
    bool active() const { return m_active; }
    bool commit(QString *error)
    {
        if (!m_db.commit()) {
            setError(error, QStringLiteral("commit failed: %1").arg(m_db.lastError().text()));
            return false;
        }
        m_active = false;
        return true;
    }

private:
    QSqlDatabase m_db;
    bool m_active = false;
};

bool run(QSqlQuery &q, QString *error)
{
    if (q.exec())
        return true;
    setError(error, q.lastError().text());
    return false;
}

} // namespace

PalletStore::PalletStore()
    : m_connection(QStringLiteral("rc-store-%1").arg(connectionCounter.fetchAndAddRelaxed(1)))
{
}

PalletStore::~PalletStore()
{
    if (QSqlDatabase::contains(m_connection)) {
        {
            QSqlDatabase db = QSqlDatabase::database(m_connection, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_connection);
    }
}

bool PalletStore::exec(const QString &sql, QString *error)
{
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    if (q.exec(sql))
        return true;
    setError(error, QStringLiteral("%1: %2").arg(sql, q.lastError().text()));
    return false;
}

bool PalletStore::open(const QString &dataDir, QString *error)
{
    if (m_open)
        return true;
    if (dataDir.isEmpty()) {
        setError(error, QStringLiteral("no data directory"));
        return false;
    }
    if (!QDir().mkpath(dataDir)) {
        setError(error, QStringLiteral("cannot create %1").arg(dataDir));
        return false;
    }
    m_path = QDir(dataDir).filePath(QStringLiteral("trays.sqlite"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(m_path);
    if (!db.open()) {
        setError(error, QStringLiteral("cannot open %1: %2").arg(m_path, db.lastError().text()));
        return false;
    }
    {
        QSqlQuery mode(db);
        if (!mode.exec(QStringLiteral("PRAGMA journal_mode=WAL")) || !mode.next()
            || mode.value(0).toString().compare(QLatin1String("wal"), Qt::CaseInsensitive) != 0) {
            setError(error, QStringLiteral("cannot switch %1 to WAL").arg(m_path));
            db.close();
            return false;
        }
    }
    if (!exec(QStringLiteral("PRAGMA synchronous=FULL"), error)) {
        db.close();
        return false;
    }
    int version = 0;
    {
        QSqlQuery ver(db);
        if (!ver.exec(QStringLiteral("PRAGMA user_version")) || !ver.next()) {
            setError(error, QStringLiteral("cannot read the schema version of %1").arg(m_path));
            db.close();
            return false;
        }
        version = ver.value(0).toInt();
    }
    if (version > schemaVersion) {
        setError(error, QStringLiteral("%1 has schema version %2, newer than %3").arg(m_path).arg(version).arg(schemaVersion));
        db.close();
        return false;
    }
    if (version < 1) {
        Transaction t(db);
        if (!t.active()
            || !exec(QStringLiteral("CREATE TABLE IF NOT EXISTS pallets (position INTEGER PRIMARY KEY, "
                                    "name TEXT NOT NULL, json BLOB NOT NULL)"),
                     error)
            || !exec(QStringLiteral("PRAGMA user_version = %1").arg(schemaVersion), error) || !t.commit(error)) {
            db.close();
            return false;
        }
    }
    if (!load(error)) {
        db.close();
        return false;
    }
    m_open = true;
    return true;
}

bool PalletStore::load(QString *error)
{
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT position, name, json FROM pallets ORDER BY position"))) {
        setError(error, q.lastError().text());
        return false;
    }
    QVector<Entry> entries;
    while (q.next()) {
        if (q.value(0).toInt() != entries.size()) {
            setError(error, QStringLiteral("%1: pallet positions are not contiguous").arg(m_path));
            return false;
        }
        entries.append({q.value(1).toString(), q.value(2).toByteArray()});
    }
    m_entries = entries;
    return true;
}

int PalletStore::indexOf(const QString &name) const
{
    for (int i = 0; i < m_entries.size(); ++i) {
        if (m_entries.at(i).name == name)
            return i;
    }
    return -1;
}

bool PalletStore::append(const Entry &entry, QString *error)
{
    if (!m_open)
        return setError(error, QStringLiteral("store not open")), false;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    Transaction t(db);
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO pallets (position, name, json) VALUES (?, ?, ?)"));
    q.addBindValue(m_entries.size());
    q.addBindValue(entry.name);
    q.addBindValue(entry.json);
    if (!t.active() || !run(q, error) || !t.commit(error))
        return false;
    m_entries.append(entry);
    return true;
}

bool PalletStore::replace(int position, const Entry &entry, QString *error)
{
    if (!m_open || position < 0 || position >= m_entries.size())
        return setError(error, QStringLiteral("no pallet at %1").arg(position)), false;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    Transaction t(db);
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE pallets SET name = ?, json = ? WHERE position = ?"));
    q.addBindValue(entry.name);
    q.addBindValue(entry.json);
    q.addBindValue(position);
    if (!t.active() || !run(q, error) || !t.commit(error))
        return false;
    m_entries[position] = entry;
    return true;
}

bool PalletStore::remove(int position, QByteArray (*renumber)(const QByteArray &, int), QString *error)
{
    if (!m_open || position < 0 || position >= m_entries.size())
        return setError(error, QStringLiteral("no pallet at %1").arg(position)), false;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    Transaction t(db);
    if (!t.active())
        return setError(error, db.lastError().text()), false;
    QSqlQuery del(db);
    del.prepare(QStringLiteral("DELETE FROM pallets WHERE position = ?"));
    del.addBindValue(position);
    if (!run(del, error))
        return false;
    QVector<Entry> moved;
    QSqlQuery up(db);
    up.prepare(QStringLiteral("UPDATE pallets SET position = ?, json = ? WHERE position = ?"));
    for (int i = position + 1; i < m_entries.size(); ++i) {
        Entry e = m_entries.at(i);
        e.json = renumber ? renumber(e.json, i - 1) : e.json;
        up.addBindValue(i - 1);
        up.addBindValue(e.json);
        up.addBindValue(i);
        if (!run(up, error))
            return false;
        moved.append(e);
    }
    if (!t.commit(error))
        return false;
    m_entries.resize(position);
    m_entries += moved;
    return true;
}

bool PalletStore::replaceAll(const QVector<Entry> &entries, QString *error)
{
    if (!m_open)
        return setError(error, QStringLiteral("store not open")), false;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    Transaction t(db);
    if (!t.active() || !exec(QStringLiteral("DELETE FROM pallets"), error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO pallets (position, name, json) VALUES (?, ?, ?)"));
    for (int i = 0; i < entries.size(); ++i) {
        q.addBindValue(i);
        q.addBindValue(entries.at(i).name);
        q.addBindValue(entries.at(i).json);
        if (!run(q, error))
            return false;
    }
    if (!t.commit(error))
        return false;
    m_entries = entries;
    return true;
}

} // namespace rc
