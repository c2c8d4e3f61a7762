#pragma once

#include <QFile>
#include <QList>
#include <QSet>
#include <QString>
#include <QXmlStreamReader>

// The messages of a Qt translation source (.ts), for the tests that check every text is translated.
struct TsMessage
{
    QString context;
    QString source;
    QString translation;
    bool unfinished = false;
};

inline QList<TsMessage> readTs(const QString &path, QString *error)
{
    QList<TsMessage> messages;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return messages;
    }
    QXmlStreamReader xml(&file);
    QString context;
    TsMessage current;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("message")) {
            current = TsMessage{context, QString(), QString(), false};
        } else if (xml.name() == QLatin1String("source")) {
            current.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            current.unfinished = xml.attributes().value(QLatin1String("type")) == QLatin1String("unfinished");
            current.translation = xml.readElementText();
            messages.append(current);
        }
    }
    if (xml.hasError())
        *error = xml.errorString();
    return messages;
}

// "context :: source" of each message.
inline QSet<QString> tsKeys(const QList<TsMessage> &messages)
{
    QSet<QString> out;
    for (const TsMessage &m : messages)
        out.insert(m.context + QLatin1String(" :: ") + m.source);
    return out;
}
