#include "shelltranslations.h"

#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QVariant>

static void initShellLanguageResources()
{
    Q_INIT_RESOURCE(tpendant_language);
}

namespace shelltranslations {

namespace {

struct QtTranslation
{
    QTranslator *translator = nullptr;
    QString language = QStringLiteral("en");
    bool loaded = false;
};

QtTranslation &qtTranslation()
{
    // Lives as long as the process: removing a translator at exit would retranslate dying widgets.
    static QtTranslation *state = new QtTranslation;
    return *state;
}

// Han characters are drawn differently in Chinese, Japanese and Korean: after the Latin font,
// the language's own CJK font comes first, then any CJK font there is.
void applyFonts(const QString &language)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    // The family the platform resolves its default to ("Sans Serif" is only an alias).
    static const QString base = QFontInfo(QApplication::font()).family();
    QStringList wanted{base};
    if (language == QLatin1String("cn"))
        wanted << QStringLiteral("Noto Sans CJK SC");
    else if (language == QLatin1String("jp"))
        wanted << QStringLiteral("Noto Sans CJK JP");
    else if (language == QLatin1String("kr"))
        wanted << QStringLiteral("Noto Sans CJK KR");
    wanted << QStringLiteral("Noto Sans CJK SC") << QStringLiteral("WenQuanYi Micro Hei");
    const QStringList installed = QFontDatabase().families();
    QStringList families;
    for (const QString &family : qAsConst(wanted)) {
        if (!families.contains(family) && (family == base || installed.contains(family)))
            families << family;
    }
    QFont font = QApplication::font();
    if (font.families() == families)
        return;
    font.setFamilies(families);
    QApplication::setFont(font);
}

void loadQt(const QString &language)
{
    QtTranslation &state = qtTranslation();
    if (state.translator) {
        QCoreApplication::removeTranslator(state.translator);
        delete state.translator;
        state.translator = nullptr;
    }
    state.language = language.isEmpty() ? QStringLiteral("en") : language;
    state.loaded = false;
    applyFonts(state.language);
    if (state.language == QLatin1String("en"))
        return;
    auto *translator = new QTranslator;
    if (!translator->load(QLocale(qtLocaleName(state.language)), QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return;
    }
    QCoreApplication::installTranslator(translator);
    state.translator = translator;
    state.loaded = true;
}

} // namespace

void install()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    initShellLanguageResources();
    tcore::ManagerHelper::instance()->registQrcAlias(QStringLiteral("tpendant"));
    QObject::connect(tcore::SettingManager::instance(), &tcore::SettingManager::changed,
                     tcore::SettingManager::instance(), [](const QString &key, const QVariant &value) {
                         if (key == QLatin1String("language"))
                             loadQt(value.toString());
                     });
    loadQt(tcore::SettingManager::getStr(QStringLiteral("language"), QStringLiteral("en")));
}

QString qtLocaleName(const QString &language)
{
    if (language == QLatin1String("cn"))
        return QStringLiteral("zh_CN");
    if (language == QLatin1String("jp"))
        return QStringLiteral("ja");
    if (language == QLatin1String("kr"))
        return QStringLiteral("ko");
    return language;
}

QString qtLanguage()
{
    return qtTranslation().language;
}

bool qtTranslationLoaded()
{
    return qtTranslation().loaded;
}

} // namespace shelltranslations

SourceRecorder::SourceRecorder(QObject *parent)
    : QTranslator(parent)
{
    m_installed = QCoreApplication::installTranslator(this);
}

SourceRecorder::~SourceRecorder()
{
    stop();
}

void SourceRecorder::stop()
{
    if (!m_installed)
        return;
    m_installed = false;
    QCoreApplication::removeTranslator(this);
}

QString SourceRecorder::translate(const char *context, const char *sourceText, const char *disambiguation, int n) const
{
    if (context && sourceText)
        m_sources.append(Source{QByteArray(context), QByteArray(sourceText), QByteArray(disambiguation), n});
    return QString();
}
