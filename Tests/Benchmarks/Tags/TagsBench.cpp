#include "Classes/Tags/OpenMeta.h"
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <cstdio>
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QString folder = app.arguments().at(1);
    const int count = app.arguments().at(2).toInt();
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) { QFile f(folder + u'/' + QString::number(i)); if (!f.open(QIODevice::WriteOnly)) return 1; }
    QElapsedTimer t; t.start();
    for (int i = 0; i < count; ++i) OpenMeta::setUserTags(QStringList{QStringLiteral("abc")}, folder + u'/' + QString::number(i));
    std::printf("%.0f files/s\n", count * 1000.0 / double(t.elapsed()));
}
