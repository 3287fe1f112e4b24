#pragma once

#include "Classes/Import/ImageImportOperation.h"

struct ZQSnapInfo;

// Imports the picture of a ".snap" package, with the tags and the address that its "Info.plist" gives.
class LittleSnapperSnapImportOperation : public ImageImportOperation
{
public:
    using ImageImportOperation::ImageImportOperation;

protected:
    bool prepare() override;

private:
    // The picture's place, or empty with the file dropped.
    QString pictureInPackage(const ZQSnapInfo &info);
};
