#include "Classes/Sharing/UploadProblem.h"

#include "Kit/Network/ZQNetworkError.h"

namespace {

constexpr int code = -2;

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
