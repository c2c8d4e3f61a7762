#pragma once

#include <QByteArray>
#include <QString>

namespace orbat {
namespace detail {

// What a received protocol line is, found by scanning its top-level keys without building a tree
// (reply lines can be many megabytes and are parsed in full only once, by the service). A line
// whose first key is an integer "id" followed by more keys is a reply on its head alone.
struct LineInfo
{
    enum Kind { Unknown, Reply, Event };
    Kind kind = Unknown;
    qint64 id = 0;
};

LineInfo classifyLine(const QByteArray &line);

// Appends text as a JSON string literal (quotes included).
void appendJsonString(QByteArray &out, const QString &text);

} // namespace detail
} // namespace orbat
