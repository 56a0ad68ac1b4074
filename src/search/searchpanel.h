#pragma once

#include <QWidget>

// The floating window of the search panel: frameless, above other windows,
// a rounded body with a soft shadow around it. Where no compositor can blend
// a shadow, it is a plain framed rectangle instead. Geometry is spoken of in
// terms of the body; the shadow margin is the window's own business.
class SearchPanel : public QWidget
{
    Q_OBJECT

public:
    // Whether the display can show see-through windows right now.
    static bool canBlend();

    explicit SearchPanel(bool blended, QWidget *parent = nullptr);

    void setContent(QWidget *content);
    QRect bodyGeometry() const; // in screen coordinates
    QRect bodyRect() const;     // in the window's own coordinates
    void moveBody(const QPoint &topLeft);
    // Grows or shrinks the body to `size`; the top edge stays where it is.
    void resizeBody(const QSize &size);
    // Brings the window to the front and gives it the keyboard.
    void present();

Q_SIGNALS:
    // The user went elsewhere (the window lost the keyboard), or the window
    // manager was asked to close the window.
    void dismissed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    int m_margin;
    bool m_wasActive = false;
};
