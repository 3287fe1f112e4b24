#include "Kit/Files/ZQOwnMove.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLog.h"

bool zqMoveNoted(const QString &source, const QString &destination, ZQError *error)
{
    const ZQOwnChange from(source);
    const ZQOwnChange to(destination);
    return zqMoveNoReplace(source, destination, error);
}

void ZQOwnMoves::takeBack()
{
    for (auto move = m_moves.crbegin(); move != m_moves.crend(); ++move) {
        ZQError error;
        if (!zqMoveNoted(move->second, move->first, &error)) {
            qCWarning(zqLogFiles, "%s stays at %s: %s", qUtf8Printable(move->first), qUtf8Printable(move->second),
                      qUtf8Printable(error.localizedDescription()));
        }
    }
    m_moves.clear();
}
