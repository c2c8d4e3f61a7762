#pragma once

#include "orba/moduleobject.h"

#include <QStringView>

namespace orba {

// A node nobody holds a pointer to: name, canonical value and its own compact children. Vectors of
// them are implicitly shared, so copying a compact subtree costs one reference count.
struct LightNode
{
    QString name;
    QVariant value;
    QVector<LightNode> kids;
};

} // namespace orba

// Its members are all relocatable: vectors of them grow by moving memory.
Q_DECLARE_TYPEINFO(orba::LightNode, Q_MOVABLE_TYPE);

namespace orba {

// Read-only view of a node in either form, for the whole-tree walks (serialisers, compare, export).
// It answers the same getters as ModuleObject, and -> works on it, so a walk reads the same for both.
class NodeRef
{
public:
    NodeRef(const ModuleObject *object)
        : m_object(object)
    {
    }
    NodeRef(const LightNode *light)
        : m_light(light)
    {
    }

    const NodeRef *operator->() const { return this; }

    const QString &name() const { return m_object ? m_object->m_name : m_light->name; }
    const QVariant &value() const { return m_object ? m_object->m_value : m_light->value; }
    bool hasValue() const { return value().isValid(); }
    int cmobjCount() const
    {
        if (m_light)
            return m_light->kids.size();
        return m_object->m_compact.isEmpty() ? m_object->m_children.size() : m_object->m_compact.size();
    }
    // Child by position, which must be in range.
    NodeRef c(int index) const
    {
        if (m_light)
            return NodeRef(&m_light->kids.at(index));
        if (!m_object->m_compact.isEmpty())
            return NodeRef(&m_object->m_compact.at(index));
        return NodeRef(m_object->m_children.at(index));
    }
    bool isArray() const;
    // The compact children, or null when the children are objects (or there are none).
    const QVector<LightNode> *compact() const
    {
        if (m_light)
            return &m_light->kids;
        return m_object->m_compact.isEmpty() ? nullptr : &m_object->m_compact;
    }

private:
    const ModuleObject *m_object = nullptr;
    const LightNode *m_light = nullptr;
};

// Internal access for the tree and its serialisers: builds trees without notifications and
// hands the result over to a target in one step.
class ModuleObjectPrivate
{
public:
    // Appends a new child to a compact tree under construction. Only the node returned last and
    // its ancestors stay valid while more children are appended.
    static LightNode *appendRaw(LightNode *parent, const QString &name);
    static void setValueRaw(LightNode *node, const QVariant &value) { node->value = value; }
    static void resetRaw(LightNode *node) { *node = LightNode(); }
    // Replaces target's value and children with those of source (source is consumed). Emits
    // cleared / childInserted / changed on target with sender when notify.
    static void moveInto(QObject *sender, ModuleObject *target, LightNode &source, bool notify = true);
    static ModuleObject *find(const ModuleObject *node, QStringView name);
    // Deep copy in compact form (compact parts are shared, not copied).
    static LightNode toLight(NodeRef source);
    static QVector<LightNode> lightChildren(NodeRef source);
    // An object for a compact node (its children stay compact).
    static ModuleObject *makeObject(const LightNode &light);
    // Lays source over target; see ModuleObject::overlayFrom.
    static void overlay(QObject *sender, ModuleObject *target, const LightNode &source, bool notify);
    static void fillFromVariant(LightNode *node, const QVariant &v);
    static void mergeVariant(QObject *sender, ModuleObject *node, const QVariant &v, bool notify, bool keepValue);
    // Canonical value types: invalid, int, qint64, double, bool, QString (others kept as given).
    static QVariant normalise(const QVariant &v);
    // Same type and same content; doubles compared bit for bit.
    static bool sameValue(const QVariant &a, const QVariant &b);
    static bool equal(NodeRef a, NodeRef b);
    static void markEmptySentinel(ModuleObject *node) { node->m_isEmptySentinel = true; }
};

// Shared "#i" name strings so that large arrays do not carry one allocation per name.
QString arrayName(int index);
// Index of a "#i" name, or -1.
int arrayIndexOf(const QChar *s, int len);

// UTF-8 to text keeping a leading U+FEFF: QString::fromUtf8 takes it for a byte order mark and
// drops it, which would change a name or value that starts with one.
inline QString utf8Exact(const char *s, int len)
{
    QString out;
    while (len >= 3 && uchar(s[0]) == 0xEF && uchar(s[1]) == 0xBB && uchar(s[2]) == 0xBF) {
        out += QChar(0xFEFF);
        s += 3;
        len -= 3;
    }
    return out.isEmpty() ? QString::fromUtf8(s, len) : out + QString::fromUtf8(s, len);
}
inline QString utf8Exact(const QByteArray &bytes)
{
    return utf8Exact(bytes.constData(), bytes.size());
}

} // namespace orba
