// How GoogleTest shows Qt's values when an expectation fails: bytes as hex, texts as text.
#ifndef VORNEX_TESTS_QT_PRINTING_H
#define VORNEX_TESTS_QT_PRINTING_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <ostream>

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << bytes.size() << " bytes, hex " << bytes.toHex().constData();
}

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toUtf8().constData() << '"'; }

#endif
