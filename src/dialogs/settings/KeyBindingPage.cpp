// SPDX-License-Identifier: MIT
// The keyboard page of the preferences. It works on copies of the records; Apply() hands them to the table.
#include "dialogs/settings/PreferencesDialog.h"
#include "host/KeyBindings.h"
#include "host/Settings.h"
#include "ui_PreferencesDialog.h"

#include <QMessageBox>

#include <algorithm>

namespace
{

QString ChordText(const QKeySequence& keys)
{
    return keys.toString(QKeySequence::PortableText);
}

} // namespace

void PreferencesDialog::CopyKeyBindings()
{
    if (!mKeyBindings)
        return;
    for (const KeySequence* sequence : mKeyBindings->GetKeySequences())
    {
        auto* const copy = new KeySequence(*sequence);
        copy->owner = nullptr;
        mWorkingBindings << copy;
    }
}

void PreferencesDialog::LoadKeyBindings()
{
    mForm->keyboardCommandListWdg->clear();
    mForm->assignedShortcutCmb->clear();
    for (KeySequence* sequence : qAsConst(mWorkingBindings))
    {
        if (!sequence->permanent)
            AddBinding(sequence);
    }
    if (mForm->keyboardCommandListWdg->count() > 0)
        mForm->keyboardCommandListWdg->setCurrentRow(0);
}

void PreferencesDialog::AddBinding(KeySequence* sequence)
{
    auto* const item = new QListWidgetItem(sequence->displayText);
    item->setData(Qt::UserRole, QVariant::fromValue(static_cast<void*>(sequence)));
    mForm->keyboardCommandListWdg->insertItem(mForm->keyboardCommandListWdg->count(), item);
}

KeySequence* PreferencesDialog::SelectedBinding() const
{
    const QListWidgetItem* const item = mForm->keyboardCommandListWdg->currentItem();
    return item ? static_cast<KeySequence*>(item->data(Qt::UserRole).value<void*>()) : nullptr;
}

void PreferencesDialog::OnSelectedItemChanged()
{
    mForm->pressShortcutKeysLE->clear();
    RefreshCurrentKeyBindings();
}

void PreferencesDialog::RefreshCurrentKeyBindings()
{
    mForm->assignedShortcutCmb->clear();
    if (const KeySequence* const selected = SelectedBinding())
    {
        for (const QKeySequence& keys : selected->currentSequences)
            mForm->assignedShortcutCmb->addItem(ChordText(keys));
    }
    UpdateExistingKeyBindingDisplay(mForm->pressShortcutKeysLE->text());
}

void PreferencesDialog::UpdateExistingKeyBindingDisplay(QString text)
{
    mForm->shortcutCurrentlyUsedByLE->clear();
    mForm->assignShortcutBtn->setEnabled(true);
    if (text.isEmpty())
        return;
    const auto holder = std::find_if(
        mWorkingBindings.cbegin(), mWorkingBindings.cend(),
        [&text](const KeySequence* sequence)
        {
            return std::any_of(sequence->currentSequences.cbegin(), sequence->currentSequences.cend(),
                               [&text](const QKeySequence& keys) { return ChordText(keys) == text; });
        });
    if (holder == mWorkingBindings.cend())
        return;
    QString shown = (*holder)->displayText;
    if ((*holder)->permanent)
    {
        shown += tr(" (Permanent)");
        // The one guard of permanent bindings: assigning and removing don't ask.
        mForm->assignShortcutBtn->setEnabled(false);
    }
    mForm->shortcutCurrentlyUsedByLE->setText(shown);
}

void PreferencesDialog::AssignKeyBinding()
{
    if (!mForm->keyboardCommandListWdg->currentItem())
        return;
    const QString text = mForm->pressShortcutKeysLE->text();
    if (text.isEmpty())
        return;
    RemoveKeyBinding(text);
    if (KeySequence* const selected = SelectedBinding())
    {
        QList<QKeySequence>& sequences = selected->currentSequences;
        sequences << QKeySequence(text, QKeySequence::NativeText);
        // The placeholder of a command without shortcuts.
        if (sequences.size() >= 2 && sequences.first().isEmpty())
            sequences.removeFirst();
    }
    RefreshCurrentKeyBindings();
    const int row = mForm->assignedShortcutCmb->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (row >= 0)
        mForm->assignedShortcutCmb->setCurrentIndex(row);
    mForm->pressShortcutKeysLE->clear();
}

void PreferencesDialog::RemoveKeyBinding()
{
    RemoveKeyBinding(mForm->assignedShortcutCmb->currentText());
}

void PreferencesDialog::RemoveKeyBinding(QString seqText)
{
    if (seqText.isEmpty())
        return;
    for (KeySequence* sequence : qAsConst(mWorkingBindings))
    {
        QList<QKeySequence>& sequences = sequence->currentSequences;
        sequences.erase(std::remove_if(sequences.begin(), sequences.end(),
                                       [&seqText](const QKeySequence& keys)
                                       { return ChordText(keys) == seqText; }),
                        sequences.end());
        if (sequences.isEmpty())
            sequences << QKeySequence();
    }
    RefreshCurrentKeyBindings();
}

void PreferencesDialog::RestoreDefaultKeyBindings()
{
    const QMessageBox::StandardButton answer =
        QMessageBox::warning(this, tr(Settings::APPLICATION_TITLE),
                             tr("Keyboard mappings will reset to their default values. Continue?"),
                             QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer != QMessageBox::Yes)
        return;
    for (KeySequence* sequence : qAsConst(mWorkingBindings))
        sequence->currentSequences = sequence->defaultSequences;
    RefreshCurrentKeyBindings();
}
