// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QTimer>
#include <QWidget>

class QSplitter;

/// The window's content: the viewers in the middle, and named places for panels round them.
///
/// "project" and, below it, "details" stand at the left, "properties" at the right. A place without a panel
/// is hidden. Which panels are shown and how large they are is kept in the player's state.
class PanelArea : public QWidget
{
    Q_OBJECT

public:
    /// @p center stands in the middle, takes what the panels leave, and becomes the area's child.
    explicit PanelArea(QWidget* center, QWidget* parent = nullptr);
    ~PanelArea() override;

    /// Puts @p panel, which becomes the area's child, into the place @p name; the panel that was there is
    /// deleted. A null @p panel empties the place. Returns whether there is such a place.
    bool SetPanel(const QString& name, QWidget* panel);
    /// The panel in the place @p name; null if there is none.
    QWidget* Panel(const QString& name) const;
    /// Whether the place @p name has a panel and is to be shown.
    bool IsVisible(const QString& name) const;
    /// The names of the places.
    QStringList Names() const;

public Q_SLOTS:
    /// Shows or hides the panel in the place @p name; a place without one keeps the wish until it has one.
    void SetVisible(const QString& name, bool visible);
    /// Hides the panel if it is shown and shows it if it is not.
    void Toggle(const QString& name);

Q_SIGNALS:
    /// The panel in the place @p name was shown or hidden.
    void VisibilityChanged(const QString& name, bool visible);

protected:
    void resizeEvent(QResizeEvent* event) override;

private Q_SLOTS:
    void OnSplitterMoved();
    void WriteState();

private:
    struct Place
    {
        QString name;
        /// The column that the place is in.
        QSplitter* column;
        QWidget* frame;
        QWidget* panel;
        /// Height within the column, in logical pixels.
        int height;
        bool wanted;
    };

    Place* Find(const QString& name);
    const Place* Find(const QString& name) const;
    void AddPlace(const QString& name, const QString& title, QSplitter* column);
    /// Shows the frames and columns that have something to show, in the sizes that they had.
    void Arrange();
    void ReadState();

    QSplitter* mColumns;
    QSplitter* mLeft;
    QSplitter* mRight;
    int mLeftWidth;
    int mRightWidth;
    QList<Place> mPlaces;
    /// Gathers the changes of a drag into one write.
    QTimer mWriteTimer;
};
