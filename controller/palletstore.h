#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <memory>

class QLockFile;

namespace rc {

/*
 * The controller's pallets: one SQLite row per pallet (position, name, JSON text) in WAL mode
 * with synchronous=FULL. Every change is one transaction and returns only after the commit, so
 * a change that was acknowledged survives a kill at any moment. Reads come from a cache kept in
 * step with the committed rows, so the store has one owner at a time: a lock file in the data
 * directory keeps a second controller (thread or process) out; the lock of a dead owner is
 * taken over. Every change checks that it touched exactly the rows it meant to and otherwise
 * rolls back and leaves the cache alone.
 * A pallet's name is read back from its stored JSON (bytes kept exactly); the name column is
 * only there for people looking into the file.
 * The rows are in the order of their "position" column, which is a key, not the pallet's place:
 * a removal leaves a gap instead of rewriting every row after it, and a row's stored "index"
 * may be older than its place (the cache always has it right).
 */
class PalletStore
{
public:
    static constexpr int schemaVersion = 1;

    struct Entry
    {
        QString name;
        QByteArray json;
    };

    using Renumber = QByteArray (*)(const QByteArray &json, int index);

    PalletStore();
    ~PalletStore();
    PalletStore(const PalletStore &) = delete;
    PalletStore &operator=(const PalletStore &) = delete;

    // Takes the data directory's lock, then opens or creates the database. A pallet whose
    // stored "index" is not its place is given it in the cache by renumber(json, place).
    bool open(const QString &dataDir, QString *error = nullptr, Renumber renumber = nullptr);
    bool isOpen() const { return m_open; }
    QString filePath() const { return m_path; }

    int count() const { return m_entries.size(); }
    const Entry &at(int position) const { return m_entries.at(position); }
    int indexOf(const QString &name) const;

    // Each returns false (store and cache unchanged) when the transaction fails.
    bool append(const Entry &entry, QString *error = nullptr);
    bool replace(int position, const Entry &entry, QString *error = nullptr);
    // Removes the pallet; renumber(json, newPlace) gives each pallet after it its new "index"
    // in the cache (their rows are left as they are).
    bool remove(int position, Renumber renumber, QString *error = nullptr);
    bool replaceAll(const QVector<Entry> &entries, QString *error = nullptr);

private:
    bool exec(const QString &sql, QString *error);
    bool load(Renumber renumber, QString *error);

    QString m_connection;
    std::unique_ptr<QLockFile> m_lock;
    QString m_path;
    bool m_open = false;
    QVector<Entry> m_entries;
    // The row key of each entry, ascending.
    QVector<qint64> m_keys;
};

} // namespace rc
