#pragma once

#include <QByteArray>
#include <QList>
#include <QLocale>
#include <QString>

// Text whose writer did not say in which encoding it is, such as the names in older archives. Any thread.
namespace ZQLegacyText {

// The encoding in which `texts`, all from one writer, were most likely written, as a name for `decoded`: UTF-8 when all
// of them are valid in it, else the best of the encodings that desktops wrote archives in. `language` decides between
// encodings that fit equally well.
QByteArray likelyEncoding(const QList<QByteArray> &texts, QLocale::Language language = QLocale::system().language());

// Bytes that are no text in `encoding` become replacement characters; an unknown encoding counts as UTF-8.
QString decoded(const QByteArray &text, const QByteArray &encoding);

} // namespace ZQLegacyText
