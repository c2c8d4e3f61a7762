#pragma once

#include "orbacore_export.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

namespace orba {

class ModuleObject;

/*
 * The lossless JSON form of a node (also the wire form of the controller protocol):
 *  - a node without children is its value: null, true/false, a string, an integer (written
 *    without a fraction or exponent) or a double (always written with a "." or an exponent and
 *    17 significant digits, "-0.0" for negative zero, so ints and doubles survive a round trip and
 *    doubles come back bit for bit); non-finite doubles are written as the strings
 *    "@inf", "@-inf", "@nan" and "@-nan" (a NaN keeps its sign);
 *  - a node whose children are exactly "#0".."#n-1" in order and that has no value is an array;
 *  - any other node with children is an object whose keys keep the children's order; a node
 *    with both a value and children carries its value under the key "@value".
 * An empty array and a null leaf both come out as null: a node with no children has no kind.
 * The reader keeps object key order and the int/double distinction, and rejects malformed input,
 * an object with a repeated key ("duplicate key \"k\""; "#0" next to "#0" too), nesting deeper
 * than maxJsonDepth(), texts larger than maxJsonBytes() and more than maxJsonNodes() nodes.
 * toVariant() rejects the same, counting values instead of nodes.
 */
namespace json {

constexpr int maxJsonDepth() { return 256; }
// Both sit above the largest legitimate text, the controller's whole pallet list of 100 pallets of
// 1200 places: about 105 MB and 6.3 million nodes (a full pallet is 1.05 MB, 62,442 nodes).
constexpr qint64 maxJsonBytes() { return 256 * 1024 * 1024; }
// Nodes one read may build (the root included); see read().
constexpr qint64 maxJsonNodes() { return 8 * 1024 * 1024; }

ORBACORE_EXPORT QByteArray write(const ModuleObject *node, bool compact = true);
// Parses into a fresh tree and only then replaces node's value and children; on error node is
// untouched and false is returned with *error set.
ORBACORE_EXPORT bool read(QObject *sender, ModuleObject *node, const QByteArray &text, QString *error = nullptr);
// The same with a budget of nodes: a text that would build more than maxNodes nodes is refused.
ORBACORE_EXPORT bool read(QObject *sender, ModuleObject *node, const QByteArray &text, QString *error,
                          qint64 maxNodes);
// The same, checking and counting the whole text but building only the top `levels` levels:
// children of containers nested deeper are not made (their containers come out empty). For a
// reader that keeps the text itself and looks only at its top, such as a store of pallets.
ORBACORE_EXPORT bool readLevels(QObject *sender, ModuleObject *node, const QByteArray &text, int levels,
                                QString *error, qint64 maxNodes);

// Plain JSON <-> QVariant helpers with the same number rules (ints stay qint64/int, doubles stay
// double); objects become QVariantMap (key order is lost there) - use read() to keep order.
ORBACORE_EXPORT QByteArray fromVariant(const QVariant &v, bool compact = true);
ORBACORE_EXPORT QVariant toVariant(const QByteArray &text, bool *ok = nullptr, QString *error = nullptr);
// The same with a budget of values (the outermost included) other than maxJsonNodes().
ORBACORE_EXPORT QVariant toVariant(const QByteArray &text, bool *ok, QString *error, qint64 maxValues);

} // namespace json
} // namespace orba
