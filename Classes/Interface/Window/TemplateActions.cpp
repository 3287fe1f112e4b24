#include "Classes/Interface/Window/TemplateActions.h"

#include "Classes/Application/TemplateFolder.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Window/ImportActions.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <utility>

TemplateActions::TemplateActions(WindowContext &window, ImportActions &imports, QString directory, QWidget *sheetsOn)
    : m_window(window), m_imports(imports), m_directory(std::move(directory)), m_sheetsOn(sheetsOn)
{
}

void TemplateActions::newFileFromTemplate(const QString &selected)
{
    if (m_sheet) {
        m_sheet->reload();
        return;
    }
    m_sheet =
        new TemplatesSheet(m_sheetsOn, m_directory, [this](const TemplateFile &source) { return remove(source); });
    m_sheet->select(selected);
    m_sheet->open([this](std::optional<int> code) {
        const auto chosen = code == TemplatesSheet::NewCode ? m_sheet->chosen() : std::nullopt;
        m_sheet = nullptr; // it goes of itself
        if (chosen) {
            makeAsset(*chosen);
        } else if (code == TemplatesSheet::AddCode) {
            addTemplates();
        }
    });
}

void TemplateActions::makeAsset(const TemplateFile &source)
{
    const auto into = m_imports.targetForFiles({source.title + u'.' + source.extension});
    ZQError error;
    if (into && !Templates::makeAsset(source, *into, &error) && !error.isNull()) {
        m_window.user.presentError(error);
    }
}

void TemplateActions::addTemplates()
{
    FileChoice choice;
    choice.title = zqLocalized("Add Templates");
    choice.prompt = zqLocalized("Add");
    choice.extensions = ImportDoor::openPanelExtensions();
    choice.several = true;
    QString last;
    for (const QString &path : m_window.user.chooseFilesToOpen(choice)) {
        ZQError error;
        if (const auto added = TemplateFolder::add(path, m_directory, &error)) {
            last = Templates::atPath(*added).title;
        } else {
            m_window.user.presentError(error);
        }
    }
    newFileFromTemplate(last);
}

bool TemplateActions::remove(const TemplateFile &source)
{
    ZQError error;
    if (!TemplateFolder::remove(source.path, m_directory, &error)) {
        m_window.user.presentError(error);
        return false;
    }
    m_window.user.showNotificationWithText(zqFormat(zqLocalized("“%@” was put into the trash"), {source.title}),
                                           NotificationPlace::Window, usualNotificationTime);
    return true;
}

QList<WindowCommand> TemplateActions::commands()
{
    return {{CommandID::NewFromTemplate, zqLocalized("New from Template…"), {Qt::CTRL | Qt::ALT | Qt::Key_N}, [this] {
                 newFileFromTemplate();
             }}};
}
