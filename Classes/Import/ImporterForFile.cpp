#include "Classes/Import/ImporterForFile.h"

#include "Classes/Import/ArchiveImportOperation.h"
#include "Classes/Import/ImageImportOperation.h"
#include "Classes/Import/ImportKind.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/KindImportOperations.h"
#include "Classes/Import/LittleSnapperSnapImportOperation.h"

std::shared_ptr<BaseImportOperation> importOperationForFilePath(const QString &path)
{
    const ImportKind *kind = importKindForPath(path);
    if (!kind || !ImportQueries::fileAtPathIsSupported(path)) {
        return nullptr;
    }
    switch (kind->importer) {
    case Importer::Image:
        return std::make_shared<ImageImportOperation>(path);
    case Importer::QuickLook:
        return std::make_shared<QuickLookImportOperation>(path);
    case Importer::Acorn:
        return std::make_shared<AcornImportOperation>(path);
    case Importer::Sketch:
        return std::make_shared<SketchImportOperation>(path);
    case Importer::SVG:
        return std::make_shared<SVGImportOperation>(path);
    case Importer::PDF:
        return std::make_shared<PDFImportOperation>(path);
    case Importer::Snap:
        return std::make_shared<LittleSnapperSnapImportOperation>(path);
    case Importer::Archive:
        return std::make_shared<ArchiveImportOperation>(path);
    case Importer::EPS:
        return std::make_shared<EPSImportOperation>(path);
    }
    return nullptr;
}
