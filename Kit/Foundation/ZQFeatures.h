#pragma once

#include <QString>

#include <functional>

// What is told when it is used. Each has a name, which is logged and counted and never changes, and a title for a
// person: one table in ZQFeatures.cpp.
enum class ZQFeature : unsigned char {
    AddExportPreset,
    DeleteExportPreset,
    MoveExportPreset,
    ExportItems,
    AddNewFolder,
    AddNewProject,
    UploadToDropbox,
    UploadElsewhere, // to any other service
};

// Says that a feature was used, and nothing of a person's. Its name is logged to zelto.features, and told to whoever
// counts. Any thread.
void zqDidUseFeature(ZQFeature feature);

QString zqNameOfFeature(ZQFeature feature);
// Localized. Of a name that is not in the table, which another version counted: the name.
QString zqTitleOfFeature(const QString &name);

// Called for each on the thread that used it, and with nothing locked. Null: nobody counts.
void zqSetFeatureObserver(std::function<void(const QString &name)> observer);
