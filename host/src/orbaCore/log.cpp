#include "orba/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMutex>
#include <QMutexLocker>

#include <atomic>
#include <cstdio>

namespace orba {

namespace {

struct LogState
{
    QMutex mutex;
    QString root;
    LogHook hook;
    std::atomic<bool> console{true};
};

LogState &state()
{
    static LogState s;
    return s;
}

} // namespace

void setLogRoot(const QString &dir)
{
    LogState &s = state();
    QMutexLocker lock(&s.mutex);
    s.root = dir;
}

QString logRoot()
{
    LogState &s = state();
    QMutexLocker lock(&s.mutex);
    return s.root.isEmpty() ? QDir::currentPath() : s.root;
}

void setConsoleLogEnabled(bool on)
{
    state().console = on;
}

void setLogHook(LogHook hook)
{
    LogState &s = state();
    QMutexLocker lock(&s.mutex);
    s.hook = std::move(hook);
}

LogBase::LogBase(bool console, bool file, const QString &colour, const QString &tag, const QString &pathPattern,
                 const QString &file_, const QString &suffix)
    : m_console(console)
    , m_file(file)
{
    m_line.colour = colour;
    m_line.tag = tag;
    if (file) {
        QString path = pathPattern.arg(file_) + QLatin1Char('.') + suffix;
        if (QFileInfo(path).isRelative())
            path = QDir(logRoot()).filePath(path);
        m_line.filePath = QDir::cleanPath(path);
    }
}

LogBase::~LogBase()
{
    m_line.message = m_parts.join(QString());
    const QString body = m_line.tag + QLatin1Char(' ') + m_line.message;
    LogState &s = state();
    // Lines of several threads must not interleave inside one file or on the console.
    QMutexLocker lock(&s.mutex);
    if (m_console && s.console) {
        const QByteArray text = (m_line.colour + body + QLatin1String("\033[0m\n")).toUtf8();
        std::fwrite(text.constData(), 1, size_t(text.size()), stderr);
        std::fflush(stderr);
    }
    if (m_file && !m_line.filePath.isEmpty()) {
        QDir().mkpath(QFileInfo(m_line.filePath).absolutePath());
        QFile f(m_line.filePath);
        if (f.open(QIODevice::WriteOnly | QIODevice::Append))
            f.write((body + QLatin1Char('\n')).toUtf8());
    }
    if (s.hook) {
        const LogHook hook = s.hook;
        lock.unlock();
        hook(m_line);
    }
}

LogBase &LogBase::operator<<(const QString &s)
{
    m_parts.append(s);
    return *this;
}

LogBase &LogBase::operator<<(const char *s)
{
    m_parts.append(QString::fromUtf8(s));
    return *this;
}

LogBase &LogBase::operator<<(const QByteArray &s)
{
    m_parts.append(QString::fromUtf8(s));
    return *this;
}

LogBase &LogBase::operator<<(int v)
{
    m_parts.append(QString::number(v));
    return *this;
}

LogBase &LogBase::operator<<(qint64 v)
{
    m_parts.append(QString::number(v));
    return *this;
}

LogBase &LogBase::operator<<(double v)
{
    m_parts.append(QString::number(v, 'g', QLocale::FloatingPointShortest));
    return *this;
}

LogBase &LogBase::operator<<(bool v)
{
    m_parts.append(v ? QStringLiteral("true") : QStringLiteral("false"));
    return *this;
}

QFLog::QFLog(const QString &colour, const QString &tag, const QString &pathPattern, const QString &file,
             const QString &suffix)
    : LogBase(true, true, colour, tag, pathPattern, file, suffix)
{
}

QLog::QLog(const QString &colour, const QString &tag)
    : LogBase(true, false, colour, tag, QString(), QString(), QString())
{
}

FLog::FLog(const QString &tag, const QString &pathPattern, const QString &file, const QString &suffix)
    : LogBase(false, true, QString(), tag, pathPattern, file, suffix)
{
}

} // namespace orba
