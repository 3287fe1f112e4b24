#include "Classes/Editing/FileProblems.h"

#include "Classes/Editing/EditRun.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <cerrno>

void FileProblems::add(const QString &name, const ZQError &error)
{
    if (error.domain == ZQError::posixDomain && error.code == ECANCELED) {
        return; // the person knows
    }
    if (m_count++ == 0) {
        m_first = name;
        m_error = error;
    }
    m_isOfPlace = m_isOfPlace || zqIsErrorOfPlace(error);
}

void FileProblems::tell(EditRun &run, const char *one, const char *several) const
{
    if (m_count == 0) {
        return;
    }
    const QString what =
        m_count == 1 ? zqFormat(zqLocalized(one), {m_first}) : zqFormat(zqLocalized(several), {m_count});
    const QString advice = zqAdviceForFileError(m_error);
    run.presentError(ZQError::with(
        m_error.domain, m_error.code, what,
        m_count == 1 ? advice : zqFormat(zqLocalized("The first of them is “%@”: %@"), {m_first, advice})));
}
