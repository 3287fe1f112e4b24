#pragma once

#include <QString>

#include <memory>

class BaseImportOperation;

// The operation that imports a file of this kind, by its name; null for a file that no importer takes. Any thread.
std::shared_ptr<BaseImportOperation> importOperationForFilePath(const QString &path);
