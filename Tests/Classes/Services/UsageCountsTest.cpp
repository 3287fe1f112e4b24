// What is counted of the use of features: nothing until the person wants it, and nothing they cannot see and erase.

#include "Classes/Services/UsageCounts.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

const QString folders = QStringLiteral("Add New Folder");
const QString exports = QStringLiteral("Export Items");

class UsageCountsTest : public testing::Test
{
protected:
    ~UsageCountsTest() override { setOn(false); }
    static void setOn(bool isOn)
    {
        ZQUserDefaults::standardUserDefaults().setObjectForKey(isOn, UsageCounts::countsKey);
    }

    UserWorld world{"usage"};
    const QDate today = QDate::currentDate();
};

} // namespace

TEST_F(UsageCountsTest, AreOffAtFirstAndAddedToThoseOfOtherProcesses)
{
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(UsageCounts::countsKey);
    {
        UsageCounts counts;
        counts.follow();
        zqDidUseFeature(ZQFeature::AddNewFolder);
    }
    EXPECT_FALSE(QFile::exists(UsageCounts::usualPath()));
    setOn(true);
    {
        UsageCounts counts;
        counts.follow();
        UsageCounts other; // as a second process has it
        zqDidUseFeature(ZQFeature::AddNewFolder);
        zqDidUseFeature(ZQFeature::AddNewFolder);
        other.count(exports, today.addDays(-1));
        other.count(exports, today.addDays(-400));
        EXPECT_EQ(counts.days()[today][folders], 2) << "before they are written, too";
        EXPECT_TRUE(other.write());
    }
    zqDidUseFeature(ZQFeature::AddNewFolder); // nobody counts any more
    const UsageCounts::Days expected{{today.addDays(-1), {{exports, 1}}}, {today, {{folders, 2}}}};
    EXPECT_EQ(UsageCounts().days(), expected) << "those of a year";
    EXPECT_TRUE(UsageCounts().erase());
    EXPECT_FALSE(QFile::exists(UsageCounts::usualPath()));
    EXPECT_TRUE(UsageCounts().days().isEmpty());
}

TEST_F(UsageCountsTest, ADamagedFileIsSaidAndLeftUntilItIsErased)
{
    setOn(true);
    UsageCounts counts;
    counts.count(folders);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(UsageCounts::usualPath()).path()));
    QFile file(UsageCounts::usualPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"2026-");
    file.close();
    ZQError error;
    EXPECT_FALSE(counts.write(&error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Erase")))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(QFile(UsageCounts::usualPath()).size(), 7);
    EXPECT_TRUE(counts.erase());
    counts.count(folders);
    EXPECT_TRUE(counts.write());
    EXPECT_EQ(UsageCounts().days()[today][folders], 1);
}
