#include "Kit/Foundation/ZQLocalized.h"

#include <QCoreApplication>

QString zqLocalized(const QString &key)
{
    return zqLocalized(key.toUtf8().constData());
}

QString zqLocalized(const char *key)
{
    return QCoreApplication::translate("Zelto", key);
}

QString zqFormat(const QString &format, const QVariantList &arguments)
{
    QString out;
    out.reserve(format.size() + 32);
    qsizetype next = 0;
    const auto take = [&] { return next < arguments.size() ? arguments.at(next++) : QVariant(); };
    for (qsizetype i = 0; i < format.size(); ++i) {
        if (format.at(i) != u'%' || i + 1 >= format.size()) {
            out += format.at(i);
            continue;
        }
        qsizetype kind = i + 1;
        while (kind + 1 < format.size() && format.at(kind) == u'l') {
            ++kind;
        }
        const QChar code = format.at(kind);
        if (code == u'%' && kind == i + 1) {
            out += u'%';
        } else if (code == u'@' || code == u's') {
            out += take().toString();
        } else if (code == u'd' || code == u'i' || code == u'u') {
            out += QString::number(take().toLongLong());
        } else if (code == u'f') {
            out += QString::number(take().toDouble(), 'f', 6);
        } else {
            out += format.at(i);
            continue;
        }
        i = kind;
    }
    return out;
}
