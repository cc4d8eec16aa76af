#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QTextStream>

#include "vornex_label_tcp/Entry_Points.h"

// The file is opened and closed for each message, so that it can be removed or truncated while the host runs.
void customMessageHandler(QtMsgType, const char* message) {
    QFile file(QLatin1String("/tmp/debug.log"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return;
    QTextStream stream(&file);
    stream << QDateTime::currentDateTime().toString(QLatin1String("yyyy.MM.dd.hh:mm:ss.z")) << ':' << QString(message)
           << '\n';
    stream.flush();
}
