#include <tcore/managerhelper.h>

#include <tcore/settingmanager.h>
#include <tcore/thememanager.h>

#include <kx/kx.h>
#include <orba/json.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>

#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTranslator>
#include <QVBoxLayout>

namespace tcore {

namespace {

const QString kLogNode = QStringLiteral("tormo.log.current");

QString nowTag(const QString &letter)
{
    return QStringLiteral("[%1|%2]").arg(letter, QDateTime::currentDateTime().toString(QStringLiteral("MM/dd hh:mm:ss.zzz")));
}

void hostInfo(const QString &message)
{
    orba::QFLog(QStringLiteral("\033[36m"), nowTag(QStringLiteral("I")), QStringLiteral("./log/%1"),
                QStringLiteral("host"), QStringLiteral("log"))
        << message;
}

void hostError(const QString &message)
{
    orba::QFLog(QStringLiteral("\033[31m"), nowTag(QStringLiteral("E")), QStringLiteral("./log/%1"),
                QStringLiteral("host"), QStringLiteral("log"))
        << message;
}

QString msgTitle(const QString &kind)
{
    if (kind == QLatin1String("q"))
        return ManagerHelper::tr("Question");
    if (kind == QLatin1String("warning"))
        return ManagerHelper::tr("Warning");
    if (kind == QLatin1String("error"))
        return ManagerHelper::tr("Error");
    return ManagerHelper::tr("Information");
}

} // namespace

struct ManagerHelper::Private
{
    QStringList aliases;
    QHash<QString, QTranslator *> translators;
    QString language = QStringLiteral("en");

    bool msgTestMode = false;
    QQueue<bool> answers;
    QList<MsgRecord> msgHistory;
    std::function<void(const MsgRecord &)> observer;

    QList<QVariantMap> logHistory;
    QPointer<orba::ModuleObject> logNode;
    QPointer<orba::ModuleObject> root;
    bool attaching = false;

    void attachLogNode(ManagerHelper *q);
};

void ManagerHelper::Private::attachLogNode(ManagerHelper *q)
{
    if (attaching)
        return;
    orba::ModuleObject *top = orba::m();
    if (root != top) {
        root = top;
        // The tree may be rebuilt (tests reset the root): follow the log node when it comes back.
        QObject::connect(top, &orba::ModuleObject::childInserted, q, [this, q](orba::ModuleObject *, int, QObject *) {
            if (!logNode)
                attachLogNode(q);
        });
    }
    if (logNode)
        return;
    attaching = true;
    orba::ModuleObject *node = kx::globalNode(kLogNode);
    attaching = false;
    if (node->isEmpty())
        return;
    logNode = node;
    QObject::connect(node, &orba::ModuleObject::changed, q,
                     [q](const QVariant &value, const QVariant &, QObject *) { q->onLogNodeChanged(value); });
}


ManagerHelper *ManagerHelper::instance()
{
    // Never destroyed: translators and the log hook must survive modules unloading at exit.
    static ManagerHelper *helper = new ManagerHelper;
    return helper;
}

ManagerHelper::ManagerHelper() : d(new Private)
{
    d->attachLogNode(this);
}

ManagerHelper::~ManagerHelper()
{
    delete d;
}

void ManagerHelper::registQrcAlias(const QString &module)
{
    if (module.isEmpty() || d->aliases.contains(module))
        return;
    d->aliases.append(module);
    reloadTranslations(SettingManager::getStr(QStringLiteral("language"), d->language));
}

QStringList ManagerHelper::qrcAliases() const
{
    return d->aliases;
}

void ManagerHelper::reloadTranslations(const QString &lang)
{
    d->language = lang.isEmpty() ? QStringLiteral("en") : lang;
    for (const QString &alias : qAsConst(d->aliases)) {
        if (QTranslator *old = d->translators.take(alias)) {
            QCoreApplication::removeTranslator(old);
            delete old;
        }
        if (d->language == QLatin1String("en"))
            continue;
        const QString file = QStringLiteral(":/%1/language/%1_%2.qm").arg(alias, d->language);
        auto *translator = new QTranslator;
        if (!translator->load(file)) {
            // Not every module ships every language; the texts stay in English.
            hostInfo(QStringLiteral("no translation %1").arg(file));
            delete translator;
            continue;
        }
        QCoreApplication::installTranslator(translator);
        d->translators.insert(alias, translator);
    }
}

bool ManagerHelper::execMsgOk(const QString &kind, const QString &text, const QString &button)
{
    const MsgRecord record{kind, text, button};
    d->msgHistory.append(record);
    emit messageAsked(kind, text);
    if (d->observer)
        d->observer(record);

    const bool question = kind == QLatin1String("q");
    if (d->msgTestMode) {
        if (!d->answers.isEmpty())
            return d->answers.dequeue();
        return !question;
    }

    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        hostError(QStringLiteral("message box without a GUI (%1): %2").arg(kind, text));
        return !question;
    }

    QDialog box(QApplication::activeWindow());
    box.setObjectName(QStringLiteral("msgBox"));
    box.setModal(true);
    box.setWindowTitle(msgTitle(kind));
    box.setMinimumWidth(ThemeManager::getSize(420));

    auto *layout = new QVBoxLayout(&box);
    layout->setContentsMargins(ThemeManager::getSize(24), ThemeManager::getSize(24), ThemeManager::getSize(24),
                               ThemeManager::getSize(16));
    layout->setSpacing(ThemeManager::getSize(20));

    auto *title = new QLabel(msgTitle(kind), &box);
    title->setObjectName(QStringLiteral("lblMsgTitle"));
    title->setFont(ThemeManager::getFont(QStringLiteral("title")));
    layout->addWidget(title);

    auto *label = new QLabel(text, &box);
    label->setObjectName(QStringLiteral("lblMsgText"));
    label->setWordWrap(true);
    label->setFont(ThemeManager::getFont(QStringLiteral("large")));
    label->setTextInteractionFlags(Qt::NoTextInteraction);
    layout->addWidget(label, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    const QSize buttonSize(ThemeManager::getSize(108), ThemeManager::getSize(48));
    const QString okText = (button.isEmpty() || button == QLatin1String("_")) ? tr("OK") : button;
    auto *ok = new QPushButton(okText, &box);
    ok->setObjectName(QStringLiteral("btnMsgOk"));
    ok->setMinimumSize(buttonSize);
    ok->setFont(ThemeManager::getFont(QStringLiteral("default")));
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, &box, &QDialog::accept);
    if (question) {
        auto *cancel = new QPushButton(tr("Cancel"), &box);
        cancel->setObjectName(QStringLiteral("btnMsgCancel"));
        cancel->setMinimumSize(buttonSize);
        cancel->setFont(ThemeManager::getFont(QStringLiteral("default")));
        connect(cancel, &QPushButton::clicked, &box, &QDialog::reject);
        buttons->addWidget(cancel);
    }
    buttons->addWidget(ok);
    layout->addLayout(buttons);

    const int result = box.exec();
    return question ? result == QDialog::Accepted : true;
}

void ManagerHelper::throwLog(QObject *sender, const QString &level, const QString &text)
{
    throwLog(sender, level, text, QString(), 0);
}

void ManagerHelper::throwLog(QObject *sender, const QString &level, const QString &title, const QString &text, int kind)
{
    const QString lvl = (level == QLatin1String("error") || level == QLatin1String("warning")) ? level
                                                                                                  : QStringLiteral("info");
    orba::ModuleObject entry(QStringLiteral("log"));
    entry.set(sender, QStringLiteral("level"), lvl);
    entry.set(sender, QStringLiteral("title"), title);
    if (!text.isEmpty())
        entry.set(sender, QStringLiteral("text"), text);
    entry.set(sender, QStringLiteral("date_time"),
              QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd/HH:mm:ss")));
    entry.set(sender, QStringLiteral("rcid"), orba::m(QStringLiteral("tcore.r.id"))->getString());
    if (kind != 0)
        entry.set(sender, QStringLiteral("kind"), kind);

    d->attachLogNode(this);
    orba::ModuleObject *node = kx::globalNode(kLogNode);
    const QVariant json = QString::fromUtf8(entry.exportToJson(true));
    // The same entry twice in one second is still two entries.
    if (node->value() == json)
        node->trigger(sender);
    else
        node->setValue(sender, json);
}

QList<QVariantMap> ManagerHelper::logHistory() const
{
    return d->logHistory;
}

void ManagerHelper::clearLogHistory()
{
    d->logHistory.clear();
    d->attachLogNode(const_cast<ManagerHelper *>(this));
}

orbat::ControllerManager *ManagerHelper::controllerManager() const
{
    return tservice()->controllerManager();
}

void ManagerHelper::setMsgTestMode(bool on)
{
    d->msgTestMode = on;
    if (!on)
        d->answers.clear();
}

bool ManagerHelper::msgTestMode() const
{
    return d->msgTestMode;
}

void ManagerHelper::queueMsgAnswer(bool answer)
{
    d->answers.enqueue(answer);
}

QList<ManagerHelper::MsgRecord> ManagerHelper::msgHistory() const
{
    return d->msgHistory;
}

void ManagerHelper::clearMsgHistory()
{
    d->msgHistory.clear();
}

void ManagerHelper::setMsgBoxObserver(std::function<void(const MsgRecord &)> observer)
{
    d->observer = std::move(observer);
}

void ManagerHelper::onLogNodeChanged(const QVariant &value)
{
    QVariantMap entry;
    switch (value.userType()) {
    case QMetaType::QVariantMap:
        entry = value.toMap();
        break;
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        const QByteArray text = value.userType() == QMetaType::QString ? value.toString().toUtf8() : value.toByteArray();
        if (text.trimmed().isEmpty())
            return;
        bool ok = false;
        QString error;
        const QVariant parsed = orba::json::toVariant(text, &ok, &error);
        if (!ok || parsed.userType() != QMetaType::QVariantMap) {
            hostError(QStringLiteral("operator log: not a JSON object (%1)").arg(ok ? QStringLiteral("wrong type") : error));
            return;
        }
        entry = parsed.toMap();
        break;
    }
    default:
        // A cleared node (null) is no entry.
        return;
    }
    if (entry.isEmpty())
        return;
    d->logHistory.append(entry);
    while (d->logHistory.size() > historyLimit())
        d->logHistory.removeFirst();

    const QString level = entry.value(QStringLiteral("level")).toString();
    const QString letter = level == QLatin1String("error") ? QStringLiteral("E")
                           : level == QLatin1String("warning") ? QStringLiteral("W") : QStringLiteral("I");
    QString line = entry.value(QStringLiteral("title")).toString();
    const QString detail = entry.value(QStringLiteral("text")).toString();
    if (!detail.isEmpty())
        line += QStringLiteral(": ") + detail;
    orba::FLog(nowTag(letter), QStringLiteral("./log/%1"), QStringLiteral("operator"), QStringLiteral("log")) << line;

    emit logEntryAdded(entry);
}

} // namespace tcore
