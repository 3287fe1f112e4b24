#include "Classes/Interface/Sidebar/SidebarTreeModel.h"
#include "Classes/Interface/Sidebar/SidebarTreeView.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Classes/Interface/WindowFixture.h"

class SidebarTreeModelTest : public WindowFixture
{
protected:
    void rename(const char *from, const char *to)
    {
        ASSERT_TRUE(library.coordinator()->newConnection()->execute(
            QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                .arg(QLatin1String(from), QLatin1String(to))));
    }
    SidebarTreeModel model{window, SidebarTreeModel::Side::Projects};
};

TEST_F(SidebarTreeModelTest, ATreeThatCannotBeReadIsAnErrorAndNotAnEmptyTree)
{
    SidebarTreeView view;
    view.setTree(&model);
    view.resize(200, 300);
    const QImage empty = view.grab().toImage();
    rename("ZQSidebarBaseItem", "away");
    int failures = 0;
    QObject::connect(&model, &SidebarTreeModel::failed, &model, [&] { ++failures; });
    model.reload();
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_TRUE(model.emptyText().startsWith(QStringLiteral("The library could not be read\n\n")));
    EXPECT_NE(view.grab().toImage(), empty) << "the view says so";

    rename("away", "ZQSidebarBaseItem");
    model.reload();
    const int rows = model.rowCount();
    EXPECT_GT(rows, 0);
    EXPECT_TRUE(model.emptyText().isEmpty());

    rename("ZQSidebarBaseItem", "away");
    model.reload();
    EXPECT_EQ(failures, 2);
    EXPECT_EQ(model.rowCount(), rows) << "what was read before stays";
    EXPECT_TRUE(model.emptyText().isEmpty());
    rename("away", "ZQSidebarBaseItem");
}
