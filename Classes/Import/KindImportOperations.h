#pragma once

#include "Classes/Import/DocumentImportOperation.h"

// The importers of documents that the image decoder cannot show by itself.

class PDFImportOperation : public BaseImportOperation
{
public:
    using BaseImportOperation::BaseImportOperation;

protected:
    QString itemClass() const override;
    QStringList findColors() override { return {}; } // a page's paper says nothing about the document
};

// Whatever the desktop's preview service draws.
class QuickLookImportOperation : public BaseImportOperation
{
public:
    using BaseImportOperation::BaseImportOperation;

protected:
    QString itemClass() const override;
    void createRepresentationBitmap() override;
};

class SVGImportOperation : public DocumentImportOperation
{
public:
    using DocumentImportOperation::DocumentImportOperation;

protected:
    QString itemClass() const override;
    void fillSize() override { addVectorTag(); }
    void createRepresentationBitmap() override;
};

class EPSImportOperation : public DocumentImportOperation
{
public:
    using DocumentImportOperation::DocumentImportOperation;

protected:
    QString itemClass() const override;
    void createRepresentationBitmap() override;
};

class AcornImportOperation : public DocumentImportOperation
{
public:
    using DocumentImportOperation::DocumentImportOperation;

protected:
    QString itemClass() const override;
    void createRepresentationBitmap() override;
};

class SketchImportOperation : public DocumentImportOperation
{
public:
    using DocumentImportOperation::DocumentImportOperation;

protected:
    QString itemClass() const override;
    void fillSize() override { addVectorTag(); }
};
