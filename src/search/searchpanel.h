#pragma once

#include <QWidget>

// The floating window of the search panel: frameless, above other windows,
// a rounded body with a soft shadow around it. Where no compositor can blend
// a shadow, it is a plain framed rectangle instead. Geometry is spoken of in
// terms of the body; the shadow margin is the window's own business.
//
// On X11 the window is as tall as the body and grows downwards with it. A
// Wayland compositor places a window by its size when it first maps it, and
// a client cannot move it afterwards, so there the window can reserve the
// tallest the body may become from the start; the body hangs from its top,
// and the part below it is see-through and lets clicks through.
class SearchPanel : public QWidget
{
    Q_OBJECT

public:
    // Whether the display can show see-through windows right now.
    static bool canBlend();
    // Whether windows are placed by the compositor alone (Wayland).
    static bool isPlacedByCompositor();

    explicit SearchPanel(bool blended, QWidget *parent = nullptr);

    void setContent(QWidget *content);
    int margin() const { return m_margin; }
    QRect bodyGeometry() const; // in screen coordinates
    QRect bodyRect() const;     // in the window's own coordinates
    void moveBody(const QPoint &topLeft);
    // Grows or shrinks the body to `size`; the top edge stays where it is.
    void resizeBody(const QSize &size);
    // Keeps the window tall enough for a body this high, whatever the body's
    // own height; 0 lets the window follow the body.
    void reserveBodyHeight(int height);
    int reservedBodyHeight() const { return m_reserved; }
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
    void applySize();

    int m_margin;
    QWidget *m_content = nullptr;
    QSize m_body;
    int m_reserved = 0;
    bool m_wasActive = false;
};
