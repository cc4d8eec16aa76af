#include <QtCore/QDateTime>
#include <QtCore/QFile>

#include "vornex_label_tcp/Entry_Points.h"

// The file is opened and closed for each message, so that it can be removed or truncated while the host runs. The
// message's bytes are written as they came: Qt 4 and Qt 5 read such texts in different encodings, and what the locale's
// encoding lacks would be lost on the way back.
void customMessageHandler(QtMsgType, const char* message) {
    QFile file(QLatin1String("/tmp/debug.log"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return;
    QByteArray line = QDateTime::currentDateTime().toString(QLatin1String("yyyy.MM.dd.hh:mm:ss.z")).toLatin1();
    line.append(':').append(message).append('\n');
    file.write(line);
}
