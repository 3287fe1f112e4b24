#pragma once

#include <QString>

#include <functional>

// Says that a feature was used, by its name: one of those that stand in the code, and nothing of a person's. It is
// logged to zelto.features, and told to whoever counts. Any thread.
void zqDidUseFeature(const QString &name);

// Called for each on the thread that used it, and with nothing locked. Null: nobody counts.
void zqSetFeatureObserver(std::function<void(const QString &name)> observer);
