#pragma once

#include <QByteArray>
#include <QString>

namespace rc {

/*
 * Byte-level looks at JSON texts the controller keeps as received: the members of the top-level
 * object, found without building a tree. The scanner only delimits (strings, brackets); it is
 * used either before a full parse decides (to pick a node budget) or on texts that have been
 * parsed already (to edit one member), never as a validator.
 */
namespace rawjson {

struct Span
{
    int begin = -1;
    int end = -1; // one past the last byte
    bool isValid() const { return begin >= 0; }
    int size() const { return end - begin; }
};

struct ObjectInfo
{
    bool ok = false;      // an object whose members could be delimited, nothing after it
    bool compact = false; // no whitespace outside strings
    int members = 0;
    int close = -1;       // offset of the closing brace
};

// Scans the top-level object of `text`; `keys` are matched against the decoded member names and
// the value span of the first member with each name is returned in `values` (same order).
ObjectInfo scanObject(const QByteArray &text, const QLatin1String *keys, Span *values, int keyCount);

// The string value of the first top-level member `key`, decoded as the parser does; false when
// the member is missing or no string.
bool topLevelString(const QByteArray &text, QLatin1String key, QString *out);

// What the store reads of a pallet it keeps, in one scan: the top-level "name" decoded as the
// parser does (hasName false when it is missing or no string) and whether the top-level "index"
// is written exactly as `index` is.
struct StoredHead
{
    bool hasName = false;
    QString name;
    bool indexIs = false;
};
StoredHead storedHead(const QByteArray &text, int index);

// `text` with the top-level "index" set to `index`: the first "index" member's value replaced,
// or the member appended when missing. Only for compact object texts that have been parsed
// before; a null array otherwise (the caller serialises a tree instead).
QByteArray withIndex(const QByteArray &text, int index);
// The same with the scan done already: `info` describes `text` and `indexValue` is the span of the
// first "index" value in it (invalid when there is none).
QByteArray withIndex(const QByteArray &text, int index, const ObjectInfo &info, const Span &indexValue);
// The same for the object at `object` inside `text` (all offsets into `text`).
QByteArray withIndex(const QByteArray &text, const Span &object, int index, const ObjectInfo &info,
                     const Span &indexValue);

// What the session needs to know of a request line before parsing it.
struct RequestHead
{
    bool object = false; // the line could be delimited as an object
    QString op;
    QString method;
    Span id;
    Span params;
    // When "params" is an object: what scanObject() tells of it and its "index" value, with
    // offsets into the line.
    ObjectInfo paramsObject;
    Span paramsIndex;
};
RequestHead scanRequest(const QByteArray &line);

// At most `maxChars` characters of `text`, with "..." when cut; for quoting input in messages.
QString excerpt(const QString &text, int maxChars = 64);
QString excerpt(const QByteArray &utf8, int maxChars = 64);

} // namespace rawjson
} // namespace rc
