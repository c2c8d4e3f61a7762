#include "modulelog.h"

#include <orba/log.h>

#include <QDateTime>

namespace tpallet {
namespace {

void writeLine(const char *colour, const char *tagPattern, const QString &text)
{
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("MM/dd hh:mm:ss.zzz"));
    orba::QFLog(QString::fromLatin1(colour), QString::fromLatin1(tagPattern).arg(time),
                QStringLiteral("./log/%1"), QStringLiteral("tpallet"), QStringLiteral("log"))
        << text;
}

} // namespace

void logError(const QString &text)
{
    writeLine("\033[31m", "[E|%1]", text);
}

void logInfo(const QString &text)
{
    writeLine("\033[36m", "[I|%1]", text);
}

void logStartup(const QString &text)
{
    writeLine("\033[35m", "[S|%1]", text);
}

} // namespace tpallet
