#include "Kit/Files/ZQFileAdvice.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace {

struct Advice
{
    int code;
    bool isOfPlace;
    const char *text;
};

constexpr std::array advices = {
    Advice{EROFS, true, zqKey("Its place is mounted read-only. Mount it so that it can be written to, and try again.")},
    Advice{EACCES, false, zqKey("You may not change its folder. Change the folder's permissions, and try again.")},
    Advice{EPERM, false,
           zqKey("It is locked, or you may not change its folder. Unlock it, or change the folder's permissions, "
                 "and try again.")},
    Advice{ENOSPC, true, zqKey("The disk is full. Make room on it, and try again.")},
    Advice{EDQUOT, true, zqKey("Your share of the disk is used up. Make room there, and try again.")},
    Advice{EFBIG, false, zqKey("It is too large for the disk it is to go to. Use another one.")},
    Advice{ENOENT, false,
           zqKey("It is not there any more. Look whether it was moved or deleted, or whether its disk is there.")},
    Advice{EEXIST, false, zqKey("Another file has that name. Use another name, or rename the other file.")},
    Advice{ENAMETOOLONG, false, zqKey("Its name is too long for the disk it is to go to. Rename it, and try again.")},
    Advice{EBUSY, false, zqKey("Another program uses it. Wait until that is done, and try again.")},
    Advice{EIO, true, zqKey("The disk reports an error. Check the disk and its connection before anything else.")},
};

const Advice *adviceFor(const ZQError &error)
{
    const auto found = error.domain == ZQError::posixDomain
                           ? std::find_if(advices.begin(), advices.end(),
                                          [&error](const Advice &each) { return each.code == error.code; })
                           : advices.end();
    return found == advices.end() ? nullptr : &*found;
}

} // namespace

QString zqAdviceForFileError(const ZQError &error)
{
    const Advice *const advice = adviceFor(error);
    return advice ? zqLocalized(advice->text) : error.localizedDescription();
}

ZQError zqExplainedFileError(int code, const QString &sentence)
{
    return ZQError::with(QStringLiteral("zelto.files"), code, sentence);
}

bool zqIsErrorOfPlace(const ZQError &error)
{
    const Advice *const advice = adviceFor(error);
    return advice && advice->isOfPlace;
}
