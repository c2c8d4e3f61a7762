#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTranslator>

/*
 * The shell's languages. Its own texts and the host's message boxes are compiled into
 * ":/tpendant/language/tpendant_<lang>.qm" and loaded through the host's alias, as a module's are;
 * Qt's own texts (standard buttons, file and progress dialogs, context menus) come from the Qt
 * translations the system ships (Debian: qttranslations5-l10n). Both follow the host setting
 * "language"; widgets retranslate on the LanguageChange event that installing them sends.
 */
namespace shelltranslations {

// Registers the shell's translations and makes Qt's follow the language setting. Idempotent.
void install();
// Qt's locale name for a shell language: "cn" -> "zh_CN", "jp" -> "ja", "kr" -> "ko", "ru" -> "ru".
QString qtLocaleName(const QString &language);
// The language whose Qt translation is installed ("en": none), and whether it was found.
QString qtLanguage();
bool qtTranslationLoaded();

} // namespace shelltranslations

/*
 * Sees every text looked up while it is installed, and translates none: the shell installs it while
 * modules register their navigation entries, so that an entry's title, translated once by the
 * module, can be traced back to its source text and translated again on a language change.
 */
class SourceRecorder : public QTranslator
{
public:
    struct Source
    {
        QByteArray context;
        QByteArray text;
        QByteArray disambiguation;
        int n = -1;
    };

    explicit SourceRecorder(QObject *parent = nullptr);
    ~SourceRecorder() override;

    QString translate(const char *context, const char *sourceText, const char *disambiguation = nullptr,
                      int n = -1) const override;
    bool isEmpty() const override { return false; }

    // Installs itself on construction and removes itself on stop() or destruction.
    void stop();
    QList<Source> sources() const { return m_sources; }

private:
    mutable QList<Source> m_sources;
    bool m_installed = false;
};
