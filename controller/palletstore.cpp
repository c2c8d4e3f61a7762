#include "palletstore.h"

#include "rawjson.h"

#include <QAtomicInt>
#include <QDir>
#include <QLockFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace rc {

namespace {

QAtomicInt connectionCounter;

// Appending takes the key after the last one; keys from here on leave no room for that.
constexpr qint64 kLastKey = qint64(1) << 62;

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

// A change that touched other rows than it meant to was raced by someone writing the same
// file behind the lock's back: refuse it rather than acknowledge a write that did not happen.
bool runExpecting(QSqlQuery &q, int rows, const QString &what, QString *error)
{
    if (!run(q, error))
        return false;
    const int changed = q.numRowsAffected();
    if (changed == rows)
        return true;
    setError(error, QStringLiteral("%1 changed %2 rows instead of %3: the store was changed by another writer")
                        .arg(what)
                        .arg(changed)
                        .arg(rows));
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
    // The lock goes last, after the database is closed.
    m_lock.reset();
}

bool PalletStore::exec(const QString &sql, QString *error)
{
    QSqlQuery q(QSqlDatabase::database(m_connection, false));
    if (q.exec(sql))
        return true;
    setError(error, QStringLiteral("%1: %2").arg(sql, q.lastError().text()));
    return false;
}

bool PalletStore::open(const QString &dataDir, QString *error, Renumber renumber)
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
    auto lock = std::make_unique<QLockFile>(QDir(dataDir).filePath(QStringLiteral("trays.lock")));
    // Held for as long as the controller runs: never stale by age, only when its owner is gone.
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) {
        qint64 pid = 0;
        QString host, app;
        if (lock->error() == QLockFile::LockFailedError && lock->getLockInfo(&pid, &host, &app))
            setError(error, QStringLiteral("the pallet store in %1 is in use by %2 (pid %3 on %4)")
                                .arg(dataDir, app.isEmpty() ? QStringLiteral("another controller") : app)
                                .arg(pid)
                                .arg(host));
        else if (lock->error() == QLockFile::LockFailedError)
            setError(error, QStringLiteral("the pallet store in %1 is in use by another controller").arg(dataDir));
        else
            setError(error, QStringLiteral("cannot lock the pallet store in %1").arg(dataDir));
        return false;
    }
    m_path = QDir(dataDir).filePath(QStringLiteral("trays.sqlite"));
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    db.setDatabaseName(m_path);
    if (!db.open()) {
        setError(error, QStringLiteral("cannot open %1: %2").arg(m_path, db.lastError().text()));
        return false;
    }
    // A pallet is a megabyte of text: in pages of 64 KiB it is written and checkpointed in 16 steps
    // instead of 256. Only a new file takes the size; an existing one keeps the size it has.
    if (!exec(QStringLiteral("PRAGMA page_size=65536"), error)) {
        db.close();
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
    {
        // The log is copied into the file every 4 MiB whatever the page size (SQLite counts pages).
        QSqlQuery size(db);
        const int pageSize = size.exec(QStringLiteral("PRAGMA page_size")) && size.next() ? size.value(0).toInt() : 0;
        if (pageSize > 0 && !exec(QStringLiteral("PRAGMA wal_autocheckpoint=%1").arg(qMax(1, (4 << 20) / pageSize)), error)) {
            db.close();
            return false;
        }
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
    if (!load(renumber, error)) {
        db.close();
        return false;
    }
    m_lock = std::move(lock);
    m_open = true;
    return true;
}

bool PalletStore::load(Renumber renumber, QString *error)
{
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    QVector<Entry> entries;
    QVector<qint64> keys;
    QVector<QVariant> columnNames;
    {
        QSqlQuery q(db);
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT position, name, json FROM pallets ORDER BY position"))) {
            setError(error, q.lastError().text());
            return false;
        }
        while (q.next()) {
            const int place = entries.size();
            Entry e;
            e.json = q.value(2).toByteArray();
            // The column went through SQLite's text conversion (which drops a leading byte order
            // mark, for one); the JSON bytes did not.
            const rawjson::StoredHead head = rawjson::storedHead(e.json, place);
            e.name = head.hasName ? head.name : q.value(1).toString();
            // Rows after a removal keep the "index" they were written with; it is their place
            // that counts.
            if (!head.indexIs && renumber)
                e.json = renumber(e.json, place);
            keys.append(q.value(0).toLongLong());
            columnNames.append(q.value(1));
            entries.append(e);
        }
    }
    if (!keys.isEmpty() && keys.last() >= kLastKey) {
        // No room left to append after the last row (a foreign writer's keys): all rows written
        // anew as 0..n-1, in one transaction, so that no new key collides with an old one.
        Transaction t(db);
        if (!t.active())
            return setError(error, db.lastError().text()), false;
        QSqlQuery del(db);
        if (!del.exec(QStringLiteral("DELETE FROM pallets")))
            return setError(error, del.lastError().text()), false;
        QSqlQuery ins(db);
        ins.prepare(QStringLiteral("INSERT INTO pallets (position, name, json) VALUES (?, ?, ?)"));
        for (int i = 0; i < entries.size(); ++i) {
            ins.addBindValue(i);
            ins.addBindValue(columnNames.at(i));
            ins.addBindValue(entries.at(i).json);
            if (!runExpecting(ins, 1, QStringLiteral("renumbering"), error))
                return false;
            keys[i] = i;
        }
        if (!t.commit(error))
            return false;
        qWarning("pallet store %s: row keys reached %lld, renumbered 0..%d in order", qPrintable(m_path),
                 qlonglong(kLastKey), int(entries.size()) - 1);
    }
    m_entries = entries;
    m_keys = keys;
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
    const qint64 key = m_keys.isEmpty() ? 0 : m_keys.last() + 1;
    q.prepare(QStringLiteral("INSERT INTO pallets (position, name, json) VALUES (?, ?, ?)"));
    q.addBindValue(key);
    q.addBindValue(entry.name);
    q.addBindValue(entry.json);
    if (!t.active() || !runExpecting(q, 1, QStringLiteral("adding a pallet"), error) || !t.commit(error))
        return false;
    m_entries.append(entry);
    m_keys.append(key);
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
    q.addBindValue(m_keys.at(position));
    if (!t.active() || !runExpecting(q, 1, QStringLiteral("writing the pallet at %1").arg(position), error)
        || !t.commit(error))
        return false;
    m_entries[position] = entry;
    return true;
}

bool PalletStore::remove(int position, Renumber renumber, QString *error)
{
    if (!m_open || position < 0 || position >= m_entries.size())
        return setError(error, QStringLiteral("no pallet at %1").arg(position)), false;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    Transaction t(db);
    if (!t.active())
        return setError(error, db.lastError().text()), false;
    // Only the row goes: the rows after it keep their keys and texts (rewriting them would mean
    // a hundred megabytes for the first of a hundred full pallets); their "index" is brought up
    // to date here and whenever the store is loaded.
    QSqlQuery del(db);
    del.prepare(QStringLiteral("DELETE FROM pallets WHERE position = ?"));
    del.addBindValue(m_keys.at(position));
    if (!runExpecting(del, 1, QStringLiteral("removing the pallet at %1").arg(position), error) || !t.commit(error))
        return false;
    m_entries.remove(position);
    m_keys.remove(position);
    if (renumber) {
        for (int i = position; i < m_entries.size(); ++i)
            m_entries[i].json = renumber(m_entries.at(i).json, i);
    }
    return true;
}

bool PalletStore::replaceAll(const QVector<Entry> &entries, QString *error)
{
    if (!m_open)
        return setError(error, QStringLiteral("store not open")), false;
    QSqlDatabase db = QSqlDatabase::database(m_connection, false);
    Transaction t(db);
    if (!t.active())
        return setError(error, db.lastError().text()), false;
    QSqlQuery clear(db);
    clear.prepare(QStringLiteral("DELETE FROM pallets"));
    if (!runExpecting(clear, m_entries.size(), QStringLiteral("clearing the pallets"), error))
        return false;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO pallets (position, name, json) VALUES (?, ?, ?)"));
    for (int i = 0; i < entries.size(); ++i) {
        q.addBindValue(i);
        q.addBindValue(entries.at(i).name);
        q.addBindValue(entries.at(i).json);
        if (!runExpecting(q, 1, QStringLiteral("adding pallet %1").arg(i), error))
            return false;
    }
    if (!t.commit(error))
        return false;
    m_entries = entries;
    m_keys.resize(entries.size());
    for (int i = 0; i < entries.size(); ++i)
        m_keys[i] = i;
    return true;
}

} // namespace rc
