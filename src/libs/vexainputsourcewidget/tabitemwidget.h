// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/stwebtab.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QByteArray>
#include <QString>
#include <QWidget>

#include <memory>

class QLineEdit;

namespace vexa::inputsource {

/// One row of the web dialog's tab list: the tab's name, its address and a delete button. The
/// row keeps its tab index, the name and the address it last accepted:
///
/// - an address edit that ends empty or with a leading space gets the last accepted address
///   back; one that contains "http://", "https://" or "file:///" anywhere is accepted as
///   typed; any other gets "https://" in front;
/// - a name edit that ends empty gets the last accepted name back; any other name is accepted
///   and reported through sigNameIsRepeated(), whose answer marks the name field ("style"
///   "editError") while another tab has the same name.
///
/// Object names: "tabNameEdit", "tabUrlEdit" (EditBox, "style" "lineEdit"), "tabDeleteBtn"
/// ("imageBtn" "delete"). GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT TabItemWidget : public QWidget
{
    Q_OBJECT

public:
    /// A row for tab `tabIndex` showing `name` and `address`, both taken as accepted.
    TabItemWidget(int tabIndex, const QString& name, const QString& address,
                  QWidget* parent = nullptr);
    ~TabItemWidget() override;

    /// The tab's index within its source (STWebTab::tabIndex).
    int tabIndex() const;
    /// The last accepted name.
    QString name() const;
    /// The last accepted address, as the record carries it (UTF-8).
    QByteArray address() const;
    /// The tab as a record: the accepted name and address and the index.
    STWebTab tab() const;

    /// The line edits that take the keyboard focus, for the dialog's Tab order.
    QLineEdit* nameEditor() const;
    QLineEdit* addressEditor() const;

    /// Enables or disables the delete button.
    void setDeleteEnabled(bool enabled);
    bool isDeleteEnabled() const;

    /// Marks the name field as one that another tab also has (true), or clears the mark.
    void setNameRepeated(bool repeated);
    bool isNameRepeated() const;

    /// Sets the accessible names of the fields and the delete button from the current
    /// language, saying that they belong to the `position`th tab of the list (from 1).
    void setPosition(int position);

Q_SIGNALS:
    /// The operator clicked the delete button.
    void sigDeleteBtnClicked();
    /// A name was accepted; asked through a direct connection whether another tab has it.
    bool sigNameIsRepeated(const QString& name);

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
