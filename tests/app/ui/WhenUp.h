// Acting on a modal dialog or a popup menu once it is up: a test starts what opens it (which
// blocks in the dialog's or menu's own loop), and the action runs from that loop.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QMenu>
#include <QTimer>
#include <functional>

namespace kelvar::testkit
{

/// Runs `act` on the first widget `find` returns, polling every 10 ms.
inline void WhenUp(std::function<QWidget*()> find, std::function<void(QWidget*)> act)
{
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout,
                     [timer, find, act]
                     {
                         QWidget* widget = find();
                         if (widget == nullptr)
                         {
                             return;
                         }
                         timer->stop();
                         timer->deleteLater();
                         act(widget);
                     });
    timer->start();
}

/// Runs `act` on the modal dialog once it is up.
inline void WhenModal(std::function<void(QWidget*)> act)
{
    WhenUp([] { return QApplication::activeModalWidget(); }, std::move(act));
}

/// Runs `act` on the popup menu once it is up.
inline void WhenPopup(std::function<void(QMenu*)> act)
{
    WhenUp([] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); },
           [act](QWidget* menu) { act(static_cast<QMenu*>(menu)); });
}

} // namespace kelvar::testkit
