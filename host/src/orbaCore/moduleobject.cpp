#include "moduleobject_p.h"

#include "orba/json.h"
#include "orba/modulemanager.h"

#include <QMetaMethod>
#include <QSet>
#include <QStringView>

#include <atomic>
#include <climits>
#include <cstring>
#include <utility>

namespace orba {

namespace {

constexpr int kSharedNames = 2048;
// Below this many children a linear scan beats building a hash (and saves its memory).
constexpr int kLinearLookup = 8;

struct NameTable
{
    QString names[kSharedNames];
    NameTable()
    {
        for (int i = 0; i < kSharedNames; ++i)
            names[i] = QLatin1Char('#') + QString::number(i);
    }
};

const NameTable &nameTable()
{
    static const NameTable table;
    return table;
}

struct MetaTypeRegistration
{
    MetaTypeRegistration() { qRegisterMetaType<orba::ModuleObject *>(); }
};
const MetaTypeRegistration metaTypeRegistration;

QString internName(const QString &name)
{
    const int i = arrayIndexOf(name.constData(), name.size());
    if (i >= 0 && i < kSharedNames)
        return nameTable().names[i];
    return name;
}

ModuleObject *emptyNode()
{
    return ModuleManager::emptyMobj();
}

} // namespace

QString arrayName(int index)
{
    if (index >= 0 && index < kSharedNames)
        return nameTable().names[index];
    return QLatin1Char('#') + QString::number(index);
}

int arrayIndexOf(const QChar *s, int len)
{
    if (len < 2 || len > 10 || s[0] != QLatin1Char('#'))
        return -1;
    if (s[1] == QLatin1Char('0') && len > 2)
        return -1;
    qint64 v = 0;
    for (int i = 1; i < len; ++i) {
        const ushort u = s[i].unicode();
        if (u < '0' || u > '9')
            return -1;
        v = v * 10 + (u - '0');
    }
    return v > INT_MAX ? -1 : int(v);
}

namespace {

std::atomic<qint64> g_liveObjects{0};

// Keys of a parsed reply repeat thousands of times ("wobj", "trans", ...): keep one string per name.
QString internParsedName(const QString &name)
{
    const int i = arrayIndexOf(name.constData(), name.size());
    if (i >= 0)
        return i < kSharedNames ? nameTable().names[i] : name;
    if (name.size() > 32)
        return name;
    thread_local QSet<QString> names;
    const auto it = names.constFind(name);
    if (it != names.cend())
        return *it;
    if (names.size() >= 4096)
        names.clear();
    names.insert(name);
    return name;
}

// Position of the first child called name in a compact list, or -1. The "#i" at position i is
// found directly, as ModuleObjectPrivate::find does.
int lightIndex(const QVector<LightNode> &kids, QStringView name)
{
    const int i = arrayIndexOf(name.data(), int(name.size()));
    if (i >= 0 && i < kids.size() && QStringView(kids.at(i).name) == name)
        return i;
    const LightNode *d = kids.constData();
    for (int k = 0, n = kids.size(); k < n; ++k) {
        if (QStringView(d[k].name) == name)
            return k;
    }
    return -1;
}

// Like lightIndex for the compact children of an object, but -2 when the list is too long to
// scan: such lookups go through the object's name hash instead.
int compactIndex(const QVector<LightNode> &kids, QStringView name)
{
    const int i = arrayIndexOf(name.data(), int(name.size()));
    if (i >= 0 && i < kids.size() && QStringView(kids.at(i).name) == name)
        return i;
    if (kids.size() > kLinearLookup)
        return -2;
    return lightIndex(kids, name);
}

// The child called name, appended; "#i" brings the missing elements before it into being, as
// ModuleObject::ensureChild does.
LightNode *lightEnsureChild(LightNode *node, const QString &name)
{
    const int index = arrayIndexOf(name.constData(), name.size());
    for (int k = 0; k < index; ++k) {
        const QString element = arrayName(k);
        if (lightIndex(node->kids, QStringView(element)) < 0)
            node->kids.append(LightNode{element, QVariant(), {}});
    }
    node->kids.append(LightNode{internName(name), QVariant(), {}});
    return &node->kids.last();
}

// Overlay between two compact nodes: nobody can be listening, so it is plain data work.
void overlayLight(LightNode &target, const LightNode &source)
{
    const bool replaceChildren = NodeRef(&source).isArray();
    if (replaceChildren)
        target.kids = QVector<LightNode>();
    for (const LightNode &child : source.kids) {
        if (!replaceChildren) {
            const int i = lightIndex(target.kids, QStringView(child.name));
            if (i >= 0) {
                overlayLight(target.kids[i], child);
                continue;
            }
        }
        target.kids.append(child);
    }
    if (source.value.isValid())
        target.value = source.value;
}

void collectNames(NodeRef node, const QString *prefix, bool recursive, QStringList *out)
{
    const int n = node.cmobjCount();
    for (int i = 0; i < n; ++i) {
        const NodeRef child = node.c(i);
        const QString name = prefix ? *prefix + QLatin1Char('.') + child.name() : child.name();
        out->append(name);
        if (recursive)
            collectNames(child, &name, true, out);
    }
}

QVariant exportNode(NodeRef node)
{
    const int n = node.cmobjCount();
    if (n == 0)
        return node.value();
    if (!node.hasValue() && node.isArray()) {
        QVariantList list;
        list.reserve(n);
        for (int i = 0; i < n; ++i)
            list.append(exportNode(node.c(i)));
        return list;
    }
    QVariantMap map;
    for (int i = 0; i < n; ++i) {
        const NodeRef child = node.c(i);
        if (!map.contains(child.name()))
            map.insert(child.name(), exportNode(child));
    }
    if (node.hasValue())
        map.insert(QStringLiteral("@value"), node.value());
    return map;
}

} // namespace

// ---------------------------------------------------------------------------------------------

bool NodeRef::isArray() const
{
    const int n = cmobjCount();
    if (n == 0)
        return false;
    for (int i = 0; i < n; ++i) {
        const QString &name = c(i).name();
        if (arrayIndexOf(name.constData(), name.size()) != i)
            return false;
    }
    return true;
}

LightNode *ModuleObjectPrivate::appendRaw(LightNode *parent, const QString &name)
{
    // Most lists are short (a pose's three parts, "#0".."#2"): one block for the first three saves
    // the growing steps and is no larger than growing would make it.
    if (parent->kids.isEmpty())
        parent->kids.reserve(3);
    parent->kids.append(LightNode{internParsedName(name), QVariant(), {}});
    return &parent->kids.last();
}

ModuleObject *ModuleObjectPrivate::makeObject(const LightNode &light)
{
    auto *object = new ModuleObject(light.name);
    object->m_value = light.value;
    object->m_compact = light.kids;
    return object;
}

QVariant ModuleObjectPrivate::normalise(const QVariant &v)
{
    switch (v.userType()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return QVariant();
    case QMetaType::Int:
    case QMetaType::Double:
    case QMetaType::Bool:
    case QMetaType::QString:
        return v;
    case QMetaType::LongLong:
    case QMetaType::Long: {
        const qint64 x = v.toLongLong();
        if (x >= INT_MIN && x <= INT_MAX)
            return QVariant(int(x));
        return QVariant(x);
    }
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::ULong: {
        const quint64 x = v.toULongLong();
        if (x <= quint64(INT_MAX))
            return QVariant(int(x));
        if (x <= quint64(LLONG_MAX))
            return QVariant(qint64(x));
        return QVariant(double(x));
    }
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return QVariant(v.toInt());
    case QMetaType::Float:
        return QVariant(double(v.toFloat()));
    case QMetaType::QByteArray:
        return QVariant(QString::fromUtf8(v.toByteArray()));
    case QMetaType::QChar:
        return QVariant(QString(v.toChar()));
    default:
        return v;
    }
}

bool ModuleObjectPrivate::sameValue(const QVariant &a, const QVariant &b)
{
    if (a.userType() != b.userType())
        return false;
    switch (a.userType()) {
    case QMetaType::UnknownType:
        return true;
    case QMetaType::Double: {
        const double x = a.toDouble();
        const double y = b.toDouble();
        return std::memcmp(&x, &y, sizeof x) == 0;
    }
    default:
        return a == b;
    }
}

bool ModuleObjectPrivate::equal(NodeRef a, NodeRef b)
{
    if (!sameValue(a.value(), b.value()))
        return false;
    const int n = a.cmobjCount();
    if (n != b.cmobjCount())
        return false;
    const QVector<LightNode> *ka = a.compact();
    const QVector<LightNode> *kb = b.compact();
    // Copies share their compact parts until written: the same data is the same subtree.
    if (ka && kb && ka->constData() == kb->constData())
        return true;
    for (int i = 0; i < n; ++i) {
        const NodeRef ca = a.c(i);
        const NodeRef cb = b.c(i);
        if (ca.name() != cb.name() || !equal(ca, cb))
            return false;
    }
    return true;
}

void ModuleObjectPrivate::moveInto(QObject *sender, ModuleObject *target, LightNode &source, bool notify)
{
    if (target->m_isEmptySentinel)
        return;
    target->clear(sender, notify, false);
    const QVector<LightNode> kids = std::exchange(source.kids, QVector<LightNode>());
    if (!kids.isEmpty()) {
        // Unseen children stay compact; children somebody is told about must be objects.
        if (target->m_children.isEmpty() && target->m_compact.isEmpty() && !(notify && target->hasInsertListener())) {
            target->m_compact = kids;
            target->m_byName.clear();
            target->m_byNameValid = false;
        } else {
            target->materialise();
            target->m_children.reserve(target->m_children.size() + kids.size());
            for (const LightNode &light : kids) {
                ModuleObject *child = makeObject(light);
                target->attach(target->m_children.size(), child);
                if (notify)
                    emit target->childInserted(child, child->m_index, sender);
            }
        }
    }
    target->setValue(sender, source.value, notify);
}

ModuleObject *ModuleObjectPrivate::find(const ModuleObject *node, QStringView name)
{
    if (!node->m_compact.isEmpty())
        node->materialise();
    const QVector<ModuleObject *> &children = node->m_children;
    const int i = arrayIndexOf(name.data(), int(name.size()));
    if (i >= 0 && i < children.size() && QStringView(children[i]->m_name) == name)
        return children[i];
    if (children.size() <= kLinearLookup) {
        for (ModuleObject *child : children) {
            if (QStringView(child->m_name) == name)
                return child;
        }
        return nullptr;
    }
    if (!node->m_byNameValid)
        node->rebuildNameIndex();
    return node->m_byName.value(name.toString(), nullptr);
}

QVector<LightNode> ModuleObjectPrivate::lightChildren(NodeRef source)
{
    if (const QVector<LightNode> *kids = source.compact())
        return *kids;
    const int n = source.cmobjCount();
    QVector<LightNode> out;
    out.reserve(n);
    for (int i = 0; i < n; ++i)
        out.append(toLight(source.c(i)));
    return out;
}

LightNode ModuleObjectPrivate::toLight(NodeRef source)
{
    return LightNode{source.name(), source.value(), lightChildren(source)};
}

void ModuleObjectPrivate::overlay(QObject *sender, ModuleObject *target, const LightNode &source, bool notify)
{
    const bool replaceChildren = NodeRef(&source).isArray();
    if (replaceChildren)
        target->clear(sender, notify, false);
    for (const LightNode &child : source.kids) {
        if (!replaceChildren) {
            const int i = target->m_compact.isEmpty() ? -1 : compactIndex(target->m_compact, QStringView(child.name));
            if (i >= 0) {
                overlayLight(target->m_compact[i], child);
                continue;
            }
            if (i == -2 || !target->m_children.isEmpty()) {
                if (ModuleObject *mine = find(target, QStringView(child.name))) {
                    overlay(sender, mine, child, notify);
                    continue;
                }
            }
        }
        if (target->m_children.isEmpty() && !(notify && target->hasInsertListener())) {
            target->m_compact.append(child);
            target->m_byName.clear();
            target->m_byNameValid = false;
            continue;
        }
        target->materialise();
        ModuleObject *added = makeObject(child);
        target->attach(target->m_children.size(), added);
        if (notify)
            emit target->childInserted(added, added->m_index, sender);
    }
    if (source.value.isValid())
        target->setValue(sender, source.value, notify);
}

void ModuleObjectPrivate::fillFromVariant(LightNode *node, const QVariant &v)
{
    const int type = v.userType();
    if (type == qMetaTypeId<ModuleObject *>()) {
        const ModuleObject *src = v.value<ModuleObject *>();
        if (src) {
            node->value = src->m_value;
            node->kids = lightChildren(src);
        }
        return;
    }
    if (type == QMetaType::QVariantMap || type == QMetaType::QVariantHash) {
        QVariantMap map = type == QMetaType::QVariantMap ? v.toMap() : QVariantMap();
        if (type == QMetaType::QVariantHash) {
            const QVariantHash hash = v.toHash();
            for (auto it = hash.cbegin(); it != hash.cend(); ++it)
                map.insert(it.key(), it.value());
        }
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (it.key() == QLatin1String("@value"))
                node->value = normalise(it.value());
            else
                fillFromVariant(appendRaw(node, it.key()), it.value());
        }
        return;
    }
    if (type == QMetaType::QVariantList || type == QMetaType::QStringList) {
        const QVariantList list = v.toList();
        node->kids.reserve(list.size());
        for (int i = 0; i < list.size(); ++i)
            fillFromVariant(appendRaw(node, arrayName(i)), list.at(i));
        return;
    }
    node->value = normalise(v);
}

void ModuleObjectPrivate::mergeVariant(QObject *sender, ModuleObject *node, const QVariant &v, bool notify,
                                       bool keepValue)
{
    const int type = v.userType();
    if (type == QMetaType::QVariantMap || type == QMetaType::QVariantHash) {
        const QVariantMap map = v.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            if (it.key() == QLatin1String("@value")) {
                if (!keepValue)
                    node->setValue(sender, it.value(), notify);
            } else {
                mergeVariant(sender, node->ensureChild(sender, it.key(), notify), it.value(), notify, keepValue);
            }
        }
        return;
    }
    if (type == QMetaType::QVariantList || type == QMetaType::QStringList) {
        const QVariantList list = v.toList();
        for (int i = 0; i < list.size(); ++i)
            mergeVariant(sender, node->ensureChild(sender, arrayName(i), notify), list.at(i), notify, keepValue);
        return;
    }
    if (type == qMetaTypeId<ModuleObject *>()) {
        node->copyFrom(sender, v.value<ModuleObject *>(), notify);
        return;
    }
    node->setValue(sender, v, notify);
}

// ---------------------------------------------------------------------------------------------

ModuleObject::ModuleObject(const QString &name, ModuleObject *parent)
    : QObject(nullptr)
    , m_name(internName(name))
    , m_byNameValid(false)
{
    ++g_liveObjects;
    if (parent && !parent->m_isEmptySentinel) {
        parent->materialise();
        parent->attach(parent->m_children.size(), this);
        emit parent->childInserted(this, m_index, nullptr);
    }
}

ModuleObject::~ModuleObject()
{
    --g_liveObjects;
    const QVector<ModuleObject *> children = std::exchange(m_children, {});
    m_byName.clear();
    for (ModuleObject *child : children) {
        child->m_parent = nullptr;
        delete child;
    }
    if (m_parent) {
        ModuleObject *parent = m_parent;
        const int index = m_index;
        parent->detach(this);
        emit parent->childRemoved(m_name, index, nullptr);
    }
}

qint64 ModuleObject::liveObjects()
{
    return g_liveObjects.load();
}

void ModuleObject::setName(const QString &name)
{
    if (m_isEmptySentinel || name == m_name)
        return;
    m_name = internName(name);
    if (m_parent) {
        m_parent->m_byName.clear();
        m_parent->m_byNameValid = false;
    }
}

ModuleObject *ModuleObject::r(const QString &path) const
{
    if (path.isEmpty())
        return const_cast<ModuleObject *>(this);
    if (m_isEmptySentinel)
        return emptyNode();
    const ModuleObject *node = this;
    const QChar *d = path.constData();
    const int n = path.size();
    int start = 0;
    for (;;) {
        int end = start;
        while (end < n && d[end] != QLatin1Char('.'))
            ++end;
        ModuleObject *child = ModuleObjectPrivate::find(node, QStringView(d + start, end - start));
        if (!child)
            return emptyNode();
        node = child;
        if (end >= n)
            break;
        start = end + 1;
    }
    return const_cast<ModuleObject *>(node);
}

ModuleObject *ModuleObject::c(const QString &name, bool create)
{
    if (ModuleObject *child = childByName(name))
        return child;
    if (create && !m_isEmptySentinel)
        return append(nullptr, name);
    return emptyNode();
}

ModuleObject *ModuleObject::c(int index) const
{
    if (index < 0 || index >= cmobjCount())
        return emptyNode();
    materialise();
    return m_children.at(index);
}

ModuleObject *ModuleObject::p(int levels) const
{
    if (levels < 0)
        return const_cast<ModuleObject *>(this);
    const ModuleObject *node = m_parent;
    for (int i = 0; node && i < levels; ++i)
        node = node->m_parent;
    return node ? const_cast<ModuleObject *>(node) : emptyNode();
}

bool ModuleObject::hasCmobj(const QString &name, bool create) const
{
    if (childByName(name))
        return true;
    if (create && !m_isEmptySentinel) {
        const_cast<ModuleObject *>(this)->append(nullptr, name);
        return true;
    }
    return false;
}

bool ModuleObject::hasRmobj(const QString &path) const
{
    return !r(path)->isEmpty();
}

QList<ModuleObject *> ModuleObject::cmobjs(bool recursive) const
{
    materialise();
    QList<ModuleObject *> out;
    out.reserve(m_children.size());
    for (ModuleObject *child : qAsConst(m_children)) {
        out.append(child);
        if (recursive)
            out.append(child->cmobjs(true));
    }
    return out;
}

QStringList ModuleObject::cmobjNames(bool recursive) const
{
    // Recursive names are paths relative to this node, so they can be fed back to r().
    QStringList out;
    collectNames(this, nullptr, recursive, &out);
    return out;
}

int ModuleObject::cmobjCount() const
{
    return m_compact.isEmpty() ? m_children.size() : m_compact.size();
}

int ModuleObject::indexInPmobj() const
{
    return m_parent ? m_index : -1;
}

bool ModuleObject::isArray() const
{
    return NodeRef(this).isArray();
}

bool ModuleObject::hasValue() const
{
    return m_value.isValid();
}

int ModuleObject::getInt(int def) const
{
    if (!m_value.isValid())
        return def;
    bool ok = false;
    const int v = m_value.toInt(&ok);
    return ok ? v : def;
}

qint64 ModuleObject::getInt64(qint64 def) const
{
    if (!m_value.isValid())
        return def;
    bool ok = false;
    const qint64 v = m_value.toLongLong(&ok);
    return ok ? v : def;
}

double ModuleObject::getDouble(double def) const
{
    if (!m_value.isValid())
        return def;
    bool ok = false;
    const double v = m_value.toDouble(&ok);
    return ok ? v : def;
}

bool ModuleObject::getBool(bool def) const
{
    if (!m_value.isValid() || !m_value.canConvert<bool>())
        return def;
    return m_value.toBool();
}

QString ModuleObject::getString(const QString &def) const
{
    if (!m_value.isValid() || !m_value.canConvert<QString>())
        return def;
    return m_value.toString();
}

bool ModuleObject::isEmpty() const
{
    return m_isEmptySentinel;
}

bool ModuleObject::isNull() const
{
    return m_isEmptySentinel || (!m_value.isValid() && m_children.isEmpty() && m_compact.isEmpty());
}

ModuleObject *ModuleObject::set(QObject *sender, const QString &path, const QVariant &value, bool notify)
{
    if (m_isEmptySentinel)
        return this;
    ModuleObject *node = this;
    const QChar *d = path.constData();
    const int n = path.size();
    for (int start = 0; n > 0;) {
        int end = start;
        while (end < n && d[end] != QLatin1Char('.'))
            ++end;
        const QStringView segment(d + start, end - start);
        const int i = node->m_compact.isEmpty() ? -1 : compactIndex(node->m_compact, segment);
        if (i >= 0) {
            // From here down nobody holds a node, so nobody is to be told: write in place.
            LightNode *light = &node->m_compact[i];
            while (end < n) {
                start = end + 1;
                end = start;
                while (end < n && d[end] != QLatin1Char('.'))
                    ++end;
                const QStringView below(d + start, end - start);
                const int k = lightIndex(light->kids, below);
                light = k >= 0 ? &light->kids[k] : lightEnsureChild(light, below.toString());
            }
            light->value = ModuleObjectPrivate::normalise(value);
            return this;
        }
        ModuleObject *child = ModuleObjectPrivate::find(node, segment);
        node = child ? child : node->ensureChild(sender, segment.toString(), notify);
        if (end >= n)
            break;
        start = end + 1;
    }
    node->setValue(sender, value, notify);
    return this;
}

ModuleObject *ModuleObject::setValue(QObject *sender, const QVariant &value, bool notify)
{
    if (m_isEmptySentinel)
        return this;
    QVariant v = ModuleObjectPrivate::normalise(value);
    if (ModuleObjectPrivate::sameValue(m_value, v))
        return this;
    const QVariant old = std::exchange(m_value, v);
    if (notify)
        emit changed(v, old, sender);
    return this;
}

ModuleObject *ModuleObject::append(QObject *sender, const QString &name)
{
    if (m_isEmptySentinel)
        return this;
    materialise();
    auto *child = new ModuleObject(name);
    attach(m_children.size(), child);
    emit childInserted(child, child->m_index, sender);
    return child;
}

ModuleObject *ModuleObject::append(QObject *sender, ModuleObject *node)
{
    return insert(sender, INT_MAX, node);
}

ModuleObject *ModuleObject::insert(QObject *sender, int index, ModuleObject *node)
{
    if (m_isEmptySentinel || !node || node->m_isEmptySentinel)
        return emptyNode();
    // A node cannot become its own descendant.
    for (const ModuleObject *a = this; a; a = a->m_parent) {
        if (a == node)
            return emptyNode();
    }
    if (ModuleObject *former = node->m_parent) {
        const int formerIndex = node->m_index;
        former->detach(node);
        emit former->childRemoved(node->m_name, formerIndex, sender);
    }
    materialise();
    index = qBound(0, index, int(m_children.size()));
    attach(index, node);
    emit childInserted(node, index, sender);
    return node;
}

ModuleObject *ModuleObject::take(QObject *sender, ModuleObject *child)
{
    if (m_isEmptySentinel || !child || child->m_parent != this)
        return nullptr;
    const int index = child->m_index;
    detach(child);
    emit childRemoved(child->m_name, index, sender);
    return child;
}

ModuleObject *ModuleObject::take(QObject *sender, int index)
{
    if (index < 0 || index >= cmobjCount())
        return nullptr;
    materialise();
    return take(sender, m_children.at(index));
}

bool ModuleObject::remove(QObject *sender, ModuleObject *child)
{
    ModuleObject *taken = take(sender, child);
    delete taken;
    return taken != nullptr;
}

bool ModuleObject::remove(QObject *sender, int index)
{
    ModuleObject *taken = take(sender, index);
    delete taken;
    return taken != nullptr;
}

void ModuleObject::clear(QObject *sender, bool notify, bool recursive)
{
    if (m_isEmptySentinel || (m_children.isEmpty() && m_compact.isEmpty()))
        return;
    // Recursive: every descendant announces its own clearing before it goes away (compact ones
    // have nobody to announce it to).
    if (recursive) {
        for (ModuleObject *child : qAsConst(m_children))
            child->clear(sender, notify, true);
    }
    m_compact = QVector<LightNode>();
    const QVector<ModuleObject *> children = std::exchange(m_children, {});
    m_byName.clear();
    m_byNameValid = false;
    for (ModuleObject *child : children) {
        child->m_parent = nullptr;
        child->m_index = -1;
        delete child;
    }
    if (notify)
        emit cleared(sender);
}

void ModuleObject::copyFrom(QObject *sender, const ModuleObject *source, bool notify, bool keepName)
{
    if (m_isEmptySentinel || source == this)
        return;
    if (!source)
        source = emptyNode();
    // Copy first: source may live inside this node's subtree.
    LightNode copy = ModuleObjectPrivate::toLight(source);
    // keepName keeps the source's name on the copy as well.
    if (keepName && !source->m_isEmptySentinel)
        setName(source->m_name);
    ModuleObjectPrivate::moveInto(sender, this, copy, notify);
}

void ModuleObject::overlayFrom(QObject *sender, const ModuleObject *source, bool notify)
{
    if (m_isEmptySentinel || !source || source->isNull() || source == this)
        return;
    // Copy first: source may live inside this node's subtree.
    const LightNode copy = ModuleObjectPrivate::toLight(source);
    ModuleObjectPrivate::overlay(sender, this, copy, notify);
}

void ModuleObject::importFromVariant(QObject *sender, const QVariant &v, bool notify, bool replace, bool keepValue)
{
    if (m_isEmptySentinel)
        return;
    if (!replace) {
        ModuleObjectPrivate::mergeVariant(sender, this, v, notify, keepValue);
        return;
    }
    LightNode fresh;
    ModuleObjectPrivate::fillFromVariant(&fresh, v);
    if (keepValue)
        fresh.value = m_value;
    ModuleObjectPrivate::moveInto(sender, this, fresh, notify);
}

QVariant ModuleObject::exportToVariant() const
{
    return exportNode(this);
}

QByteArray ModuleObject::exportToJson(bool compact) const
{
    return json::write(this, compact);
}

bool ModuleObject::importFromJson(QObject *sender, const QByteArray &text, QString *error)
{
    return json::read(sender, this, text, error);
}

void ModuleObject::trigger(QObject *sender)
{
    if (m_isEmptySentinel)
        return;
    const QVariant v = m_value;
    emit changed(v, v, sender);
}

bool ModuleObject::equals(const ModuleObject *other) const
{
    if (!other)
        return false;
    if (other == this)
        return true;
    return ModuleObjectPrivate::equal(this, other);
}

ModuleObject *ModuleObject::childByName(const QString &name) const
{
    return ModuleObjectPrivate::find(this, QStringView(name));
}

ModuleObject *ModuleObject::ensureChild(QObject *sender, const QString &name, bool notify)
{
    if (m_isEmptySentinel)
        return this;
    if (ModuleObject *child = childByName(name))
        return child;
    // "#i" brings the elements before it into being too, so the array stays dense.
    const int index = arrayIndexOf(name.constData(), name.size());
    for (int k = 0; k < index; ++k) {
        const QString element = arrayName(k);
        if (!childByName(element)) {
            auto *child = new ModuleObject(element);
            attach(m_children.size(), child);
            if (notify)
                emit childInserted(child, child->m_index, sender);
        }
    }
    auto *child = new ModuleObject(name);
    attach(m_children.size(), child);
    if (notify)
        emit childInserted(child, child->m_index, sender);
    return child;
}

bool ModuleObject::hasInsertListener() const
{
    static const QMetaMethod signal = QMetaMethod::fromSignal(&ModuleObject::childInserted);
    return isSignalConnected(signal);
}

void ModuleObject::materialise() const
{
    if (m_compact.isEmpty())
        return;
    Q_ASSERT(m_children.isEmpty());
    QVector<LightNode> kids = std::exchange(m_compact, QVector<LightNode>());
    auto *self = const_cast<ModuleObject *>(this);
    m_children.reserve(kids.size());
    // Children nobody else shares are moved into their objects rather than copied.
    const bool own = kids.isDetached();
    for (int i = 0, n = kids.size(); i < n; ++i) {
        ModuleObject *child;
        if (own) {
            LightNode &light = kids.data()[i];
            child = new ModuleObject(light.name);
            child->m_value = std::move(light.value);
            child->m_compact = std::move(light.kids);
        } else {
            child = ModuleObjectPrivate::makeObject(kids.at(i));
        }
        child->m_parent = self;
        child->m_index = i;
        m_children.append(child);
    }
    m_byName.clear();
    m_byNameValid = false;
}

void ModuleObject::attach(int index, ModuleObject *node)
{
    Q_ASSERT(m_compact.isEmpty());
    node->m_parent = this;
    if (index >= m_children.size()) {
        node->m_index = m_children.size();
        m_children.append(node);
    } else {
        m_children.insert(index, node);
        reindexFrom(index);
    }
    if (m_byNameValid) {
        auto it = m_byName.find(node->m_name);
        if (it == m_byName.end())
            m_byName.insert(node->m_name, node);
        else if ((*it)->m_index > node->m_index)
            *it = node;
    }
}

void ModuleObject::detach(ModuleObject *node)
{
    const int index = node->m_index;
    m_children.remove(index);
    node->m_parent = nullptr;
    node->m_index = -1;
    reindexFrom(index);
    if (m_byNameValid && m_byName.value(node->m_name) == node) {
        m_byName.clear();
        m_byNameValid = false;
    }
}

void ModuleObject::reindexFrom(int index)
{
    for (int k = index; k < m_children.size(); ++k)
        m_children[k]->m_index = k;
}

void ModuleObject::rebuildNameIndex() const
{
    m_byName.clear();
    m_byName.reserve(m_children.size());
    for (int k = m_children.size() - 1; k >= 0; --k)
        m_byName.insert(m_children.at(k)->m_name, m_children.at(k));
    m_byNameValid = true;
}

ModuleObject *m(const QString &path, ModuleObject *root)
{
    return (root ? root : ModuleManager::root())->r(path);
}

ModuleObject *m()
{
    return ModuleManager::root();
}

} // namespace orba
