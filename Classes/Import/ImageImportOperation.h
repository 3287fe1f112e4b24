#pragma once

#include "Classes/Import/BaseImportOperation.h"

// Imports a picture: its pixel size from the header, and a tag for its size class.
class ImageImportOperation : public BaseImportOperation
{
public:
    using BaseImportOperation::BaseImportOperation;

protected:
    QString itemClass() const override;
    void fillExtension() override;
    void fillMetadata() override;
    void fillSize() override;
    QStringList embeddedKeywords() const override { return m_keywords; }

private:
    QStringList m_keywords;
};
