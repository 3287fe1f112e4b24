#include "Tools/samples/SampleCollection.h"

#include <QStringList>

#include <cstdio>

int main(int argc, char *argv[])
{
    QString folder;
    auto huge = SampleCollection::Huge::Without;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == QLatin1String("--huge")) {
            huge = SampleCollection::Huge::With;
        } else if (!argument.startsWith(u'-') && folder.isEmpty()) {
            folder = argument;
        } else {
            folder.clear();
            break;
        }
    }
    if (folder.isEmpty()) {
        std::fprintf(stderr, "usage: zelto_samples OUTDIR [--huge]\nWrites sample pictures into OUTDIR.\n");
        return 2;
    }
    const QString failed = SampleCollection::write(folder, huge);
    if (!failed.isEmpty()) {
        std::fprintf(stderr, "zelto_samples: cannot write %s\n", qPrintable(failed));
        return 1;
    }
    return 0;
}
