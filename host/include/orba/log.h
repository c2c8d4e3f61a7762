#pragma once

#include "orbacore_export.h"

#include <QString>
#include <QTextStream>

#include <functional>

namespace orba {

// One log line as the loggers write it.
struct LogLine
{
    QString colour;   // ANSI colour prefix, e.g. "\033[31m"
    QString tag;      // e.g. "[E|11/21 10:00:00.000]"
    QString message;
    QString filePath; // resolved file log path, empty for console-only lines
};

/*
 * Line loggers. Each object collects text through operator<< and writes exactly one line when
 * it is destroyed:
 *  - console (stderr): colour + tag + " " + message + "\033[0m"
 *  - file: tag + " " + message, appended to the file pathPattern.arg(file) + "." + suffix
 *    ("./log/%1", "tpallet", "log" -> ./log/tpallet.log). Relative paths are resolved against
 *    logRoot() (the working directory unless set). The folder is created when missing; a file that
 *    cannot be written is skipped silently (logging never fails the caller).
 */
class ORBACORE_EXPORT LogBase
{
public:
    LogBase(const LogBase &) = delete;
    LogBase &operator=(const LogBase &) = delete;
    virtual ~LogBase();

    LogBase &operator<<(const QString &s);
    LogBase &operator<<(const char *s);
    LogBase &operator<<(const QByteArray &s);
    LogBase &operator<<(int v);
    LogBase &operator<<(qint64 v);
    LogBase &operator<<(double v);
    LogBase &operator<<(bool v);

protected:
    LogBase(bool console, bool file, const QString &colour, const QString &tag, const QString &pathPattern,
            const QString &file_, const QString &suffix);

private:
    bool m_console;
    bool m_file;
    LogLine m_line;
    QStringList m_parts;
};

// Console and file.
class ORBACORE_EXPORT QFLog : public LogBase
{
public:
    QFLog(const QString &colour, const QString &tag, const QString &pathPattern, const QString &file,
          const QString &suffix);
};

// Console only.
class ORBACORE_EXPORT QLog : public LogBase
{
public:
    QLog(const QString &colour, const QString &tag);
};

// File only.
class ORBACORE_EXPORT FLog : public LogBase
{
public:
    FLog(const QString &tag, const QString &pathPattern, const QString &file, const QString &suffix);
};

// Folder against which relative file-log paths are resolved (default: the working directory).
ORBACORE_EXPORT void setLogRoot(const QString &dir);
ORBACORE_EXPORT QString logRoot();
// Whether lines are also written to stderr (default true; tests may silence the console).
ORBACORE_EXPORT void setConsoleLogEnabled(bool on);

// Test hook: every line written is also passed here (null removes the hook).
using LogHook = std::function<void(const LogLine &)>;
ORBACORE_EXPORT void setLogHook(LogHook hook);

} // namespace orba
