#include "Classes/Sharing/UploadProblem.h"

#include "Kit/Network/ZQNetworkError.h"

namespace {

constexpr int code = -2;
const QString adviceKey = QStringLiteral("advice");

} // namespace

ZQError UploadProblem::with(const QString &description, const QString &whatToDo)
{
    return ZQError::with(errorDomain, code, description, whatToDo);
}

ZQError UploadProblem::of(const ZQError &error)
{
    if (error.domain == errorDomain || zqIsNetworkError(error, ZQNetworkErrorCode::Offline)) {
        return error;
    }
    ZQError problem = error;
    problem.domain = errorDomain;
    problem.code = code;
    return problem;
}

ZQError UploadProblem::of(const ZQHTTPResponse &response, const QString &whatToDo)
{
    ZQError problem = of(response.error);
    if (!whatToDo.isEmpty() && problem.domain == errorDomain) {
        problem.userInfo.insert(ZQError::failureReasonKey, whatToDo);
    }
    return problem;
}

bool UploadProblem::isOurs(const ZQError &error)
{
    return error.domain == errorDomain && error.code == code;
}

void UploadProblem::advise(ZQError &error, const QString &advice)
{
    error.userInfo.insert(adviceKey, advice);
    for (const QString &key : {ZQError::descriptionKey, ZQError::failureReasonKey}) {
        if (error.userInfo.value(key).toString().isEmpty()) {
            error.userInfo.insert(key, advice);
            return;
        }
    }
}

QString UploadProblem::adviceOf(const ZQError &error)
{
    return error.userInfo.value(adviceKey).toString();
}
