#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

namespace rc {

/*
 * The controller's pallets: one SQLite row per pallet (position, name, JSON text) in WAL mode
 * with synchronous=FULL. Every change is one transaction and returns only after the commit, so
 * a change that was acknowledged survives a kill at any moment. Reads come from a cache kept in
 * step with the committed rows.
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

    PalletStore();
    ~PalletStore();
    PalletStore(const PalletStore &) = delete;
    PalletStore &operator=(const PalletStore &) = delete;

    bool open(const QString &dataDir, QString *error = nullptr);
    bool isOpen() const { return m_open; }
    QString filePath() const { return m_path; }

    int count() const { return m_entries.size(); }
    const Entry &at(int position) const { return m_entries.at(position); }
    int indexOf(const QString &name) const;

    // Each returns false (store and cache unchanged) when the transaction fails.
    bool append(const Entry &entry, QString *error = nullptr);
    bool replace(int position, const Entry &entry, QString *error = nullptr);
    // Removes the pallet and renumbers the ones after it; renumber(json, newIndex) rewrites
    // the stored "index" of each moved pallet.
    bool remove(int position, QByteArray (*renumber)(const QByteArray &, int), QString *error = nullptr);
    bool replaceAll(const QVector<Entry> &entries, QString *error = nullptr);

private:
    bool exec(const QString &sql, QString *error);
    bool load(QString *error);

    QString m_connection;
    QString m_path;
    bool m_open = false;
    QVector<Entry> m_entries;
};

} // namespace rc
