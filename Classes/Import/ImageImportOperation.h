#pragma once

#include "Classes/Import/BaseImportOperation.h"

// Imports a picture: its pixel size from the header, and a tag for its size class.
class ImageImportOperation : public BaseImportOperation
{
public:
    using BaseImportOperation::BaseImportOperation;

    // "icon", "small", "medium" or "large"; both sides known.
    static QString sizeTag(int width, int height, const ImportSettings &settings);

protected:
    QString itemClass() const override;
    void fillExtension() override;
    void fillMetadata() override;
    void fillSize() override;
    QStringList embeddedKeywords() const override { return m_keywords; }

    void addVectorTag();
    void setPixelSize(QSize size);

private:
    QStringList m_keywords;
};
