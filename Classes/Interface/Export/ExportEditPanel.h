#pragma once

#include "Classes/Export/ExportItem.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QIntValidator;
class QLabel;
class QLineEdit;
class QSpinBox;

// The fields of a new preset. Main thread.
class ExportEditPanel : public QWidget
{
    Q_OBJECT
public:
    // What the entries of the menus stand for.
    enum FormatTag { Original = -1, PNG = 0, JPEG = 1, FirstOther = 1000 };
    enum SizeTag { OriginalSize = 0, WidthAndHeight = 1, Percentage = 2 };

    explicit ExportEditPanel(QWidget *parent = nullptr);

    // Nothing stands for the original. Types without a tag of their own follow from the first on by their numbers,
    // which begin at 0 themselves.
    static int tagOfFileType(std::optional<int> fileType);

    void start();                           // with everything as for the first one
    void startWith(const ExportItem &like); // with what another preset has
    ExportItem item() const;                // what the fields say
    QComboBox &formatMenu() { return *m_format; }
    QComboBox &sizeMenu() { return *m_size; }
    QComboBox &colorMenu() { return *m_color; }
    QLineEdit &firstField() { return *m_first; }
    QLineEdit &secondField() { return *m_second; }
    QCheckBox &archiveBox() { return *m_archive; }

Q_SIGNALS:
    void saveRequested();
    void cancelRequested();

private:
    QComboBox *makeMenu(const QString &name, const QList<std::pair<QString, int>> &entries);
    QLineEdit *makeNumberField();
    void makeColors();
    void makeRows();
    void formatDidChange();
    void sizeDidChange();
    void checkPattern();
    void save();
    std::optional<int> fileType() const;

    QFormLayout *m_rows;
    QComboBox *m_format;
    QComboBox *m_size;
    QComboBox *m_color;
    QWidget *m_numbers;
    QIntValidator *m_limit; // of both
    QLineEdit *m_first;
    QLineEdit *m_second;
    QSpinBox *m_quality;
    QLineEdit *m_pattern;
    QLabel *m_problem; // of the pattern
    QCheckBox *m_archive;
};
