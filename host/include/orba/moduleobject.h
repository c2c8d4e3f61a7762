#pragma once

#include "orbacore_export.h"

#include <QObject>
#include <QHash>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <memory>

namespace orba {

class ModuleObject;
// Internal: a child kept in compact form inside its parent until someone asks for a pointer to it.
struct LightNode;

// Owning handle for free-standing nodes handed out by the host (command replies, working copies).
using MobjPtr = std::unique_ptr<ModuleObject>;

/*
 * A node of the host object tree: a name, an optional value (int, double, bool, string or null,
 * carried as a QVariant) and ordered children. Children named "#0", "#1", ... form an array.
 *
 * Paths are dotted and relative ("calibrate.p1.trans.#0"). Lookups never return null: a miss
 * yields the shared empty node (ModuleManager::emptyMobj()), whose getters return their defaults
 * and which silently ignores every write, so chained reads are always safe.
 *
 * Notifications:
 *  - changed(new, old, sender) is emitted by every value write whose new value differs from the
 *    old one (type or content). Writing the value a node already holds emits nothing; use
 *    trigger() to notify without a change.
 *  - childInserted / childRemoved / cleared are emitted by structural edits, carrying the sender.
 * All notifications are delivered synchronously, inside the call that caused them.
 *
 * "#i" lookups are O(1): a child named "#i" that sits at position i is found by index; any other
 * name goes through a per-node hash that is kept in step with structural edits.
 *
 * Storage: children that were never handed out are kept in a compact form inside their parent and
 * become ModuleObjects, one level at a time, on the first call that returns a pointer to one of
 * them. Nobody can listen to a node that has no object yet, so this is invisible from outside;
 * whole-tree operations (copy, overlay, compare, export, serialisers) work on the compact form
 * directly.
 */
class ORBACORE_EXPORT ModuleObject : public QObject
{
    Q_OBJECT

public:
    explicit ModuleObject(const QString &name = QString(), ModuleObject *parent = nullptr);
    ~ModuleObject() override;

    QString name() const { return m_name; }
    void setName(const QString &name);

    // --- lookup -------------------------------------------------------------------------------
    // Node at a dotted path below this one, or the empty node. An empty path is this node.
    ModuleObject *r(const QString &path) const;
    ModuleObject *rmobj(const QString &path) const { return r(path); }
    // Named child. With create true a missing child is appended (and returned); the module always
    // passes false, getting the empty node on a miss.
    ModuleObject *c(const QString &name, bool create = false);
    ModuleObject *cmobj(const QString &name, bool create = false) { return c(name, create); }
    // Child by position, or the empty node when out of range.
    ModuleObject *c(int index) const;
    ModuleObject *cmobj(int index) const { return c(index); }
    // Non-const twins: without them c(0) on a non-const node is ambiguous with c(QString).
    ModuleObject *c(int index) { return static_cast<const ModuleObject *>(this)->c(index); }
    ModuleObject *cmobj(int index) { return c(index); }
    // Ancestor: p(0) is the parent, p(1) the grandparent, ...; the empty node past the root.
    ModuleObject *p(int levels = 0) const;
    ModuleObject *pmobj() const { return p(0); }

    bool hasCmobj(const QString &name, bool create = false) const;
    bool hasRmobj(const QString &path) const;

    QList<ModuleObject *> cmobjs(bool recursive = false) const;
    QStringList cmobjNames(bool recursive = false) const;
    int cmobjCount() const;
    // Element count of an array (same as cmobjCount(): arrays are nodes whose children are "#i").
    int size() const { return cmobjCount(); }
    int indexInPmobj() const;
    bool isArray() const;

    // --- values -------------------------------------------------------------------------------
    QVariant value() const { return m_value; }
    bool hasValue() const;
    int getInt(int def = 0) const;
    qint64 getInt64(qint64 def = 0) const;
    double getDouble(double def = 0.0) const;
    bool getBool(bool def = false) const;
    QString getString(const QString &def = QString()) const;

    // True for the shared empty node.
    bool isEmpty() const;
    // True for a node that holds neither a value nor children (a never-filled node); the empty
    // node is null too.
    bool isNull() const;

    // --- writes (all ignored on the empty node) -----------------------------------------------
    // Set the value at a relative path, creating the missing nodes of the path ("#i" segments
    // create the missing array elements up to i). An empty path sets this node's own value.
    // Returns this node, so that writes can be chained.
    ModuleObject *set(QObject *sender, const QString &path, const QVariant &value, bool notify = true);
    ModuleObject *setValue(QObject *sender, const QVariant &value, bool notify = true);

    // Append a new child with this name and return it.
    ModuleObject *append(QObject *sender, const QString &name);
    // Append an existing node (detached from its former parent first); this node takes ownership.
    ModuleObject *append(QObject *sender, ModuleObject *node);
    // Insert an existing node at a position (clamped to 0..count); this node takes ownership.
    ModuleObject *insert(QObject *sender, int index, ModuleObject *node);
    // Detach a child and hand it to the caller (ownership passes), or null when not a child.
    ModuleObject *take(QObject *sender, ModuleObject *child);
    ModuleObject *take(QObject *sender, int index);
    // Remove and destroy a child. Returns false when it is not a child of this node.
    bool remove(QObject *sender, ModuleObject *child);
    bool remove(QObject *sender, int index);
    // Remove and destroy all children (the value is kept).
    void clear(QObject *sender, bool notify = true, bool recursive = false);

    // Make this node a deep copy of source: value and children (names, order, values). This
    // node's own name is kept. Copying from the empty node clears this one.
    void copyFrom(QObject *sender, const ModuleObject *source, bool notify = true, bool keepName = false);

    // Lay source over this node, source winning: a value source holds replaces this node's (a
    // source node without a value leaves it), a child both have is overlaid in turn, and a child
    // only source has is added as a deep copy after this node's own children, in source's order.
    // Arrays are values as a whole: when source is an array its elements replace this node's
    // children (merged by position, a shorter array would keep stale elements). Otherwise nothing
    // of this node is removed or reordered, and its name is kept. Overlaying the empty node or a
    // null node changes nothing. So a layout with defaults, overlaid with a record, holds every
    // key of the layout, in the layout's order, with the record's values.
    void overlayFrom(QObject *sender, const ModuleObject *source, bool notify = true);

    // Fill from a variant: a QVariantMap gives named children (in key order), a QVariantList
    // "#i" children, anything else the value. Existing children are replaced.
    void importFromVariant(QObject *sender, const QVariant &v, bool notify = true, bool replace = true,
                           bool keepValue = false);
    QVariant exportToVariant() const;

    // Lossless JSON form of this node (its value and subtree, not its name): see json.h.
    QByteArray exportToJson(bool compact = true) const;
    // Replace this node's value and children with those of a JSON text; on a parse error the node
    // is left unchanged, the error is put into *error, and false is returned.
    bool importFromJson(QObject *sender, const QByteArray &json, QString *error = nullptr);

    // Emits changed(value, value, sender) without changing anything.
    void trigger(QObject *sender = nullptr);

    // Structural equality: names, order, value types and values (doubles compared bit for bit).
    bool equals(const ModuleObject *other) const;

    // Node objects alive in the process (children kept compact are not counted): for diagnostics.
    static qint64 liveObjects();

signals:
    void changed(const QVariant &newValue, const QVariant &oldValue, QObject *sender);
    void childInserted(orba::ModuleObject *child, int index, QObject *sender);
    void childRemoved(const QString &name, int index, QObject *sender);
    void cleared(QObject *sender);

private:
    friend class ModuleManager;
    friend class ModuleObjectPrivate;
    friend class NodeRef;
    ModuleObject *childByName(const QString &name) const;
    ModuleObject *ensureChild(QObject *sender, const QString &name, bool notify);
    void attach(int index, ModuleObject *node);
    void detach(ModuleObject *node);
    void reindexFrom(int index);
    void rebuildNameIndex() const;
    // Turns the compact children into objects (one level); a no-op when there are none.
    void materialise() const;
    // Whether anything is connected to childInserted (inserting unseen children needs no objects).
    bool hasInsertListener() const;

    QString m_name;
    QVariant m_value;
    ModuleObject *m_parent = nullptr;
    // At most one of the two holds the children.
    mutable QVector<ModuleObject *> m_children;
    mutable QVector<LightNode> m_compact;
    int m_index = -1;
    mutable QHash<QString, ModuleObject *> m_byName;
    mutable bool m_byNameValid = true;
    bool m_isEmptySentinel = false;
};

// Global lookup by full dotted path from the process-wide root ("tpallet.pallets"), or from
// `root` when given; the empty node on a miss.
ORBACORE_EXPORT ModuleObject *m(const QString &path, ModuleObject *root = nullptr);
// The process-wide root.
ORBACORE_EXPORT ModuleObject *m();

} // namespace orba

Q_DECLARE_METATYPE(orba::ModuleObject *)
