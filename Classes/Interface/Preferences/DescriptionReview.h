#pragma once

#include "Classes/Sharing/UploadDescription.h"

#include <QHash>
#include <QWidget>

class QGridLayout;
class QLineEdit;
class QPushButton;

// What a description that is about to be added says: where files would go, and a field for each secret it needs. Main
// thread.
class DescriptionReview : public QWidget
{
    Q_OBJECT
public:
    // `replaces`: there is one of that name.
    DescriptionReview(const UploadDescription &description, bool replaces, QWidget *parent = nullptr);
    QHash<QString, ZQSecret> secrets() const; // as they were entered
    void takeFocus();

Q_SIGNALS:
    void accepted();
    void rejected();

private:
    void addSecrets(const UploadDescription &description, QGridLayout *form);
    bool isComplete() const;

    QHash<QString, QLineEdit *> m_fields; // by the secret's name
    QLineEdit *m_first = nullptr;         // null: it needs no secret
    QPushButton *m_add;
};
