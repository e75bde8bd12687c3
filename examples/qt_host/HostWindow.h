#pragma once

#include "MapView.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMainWindow>
#include <QTableWidget>

/// Opens a raster, its sidecar or the first page of a PDF, tells its reference, and saves
/// it as a sidecar.
class HostWindow : public QMainWindow {
    Q_DECLARE_TR_FUNCTIONS(HostWindow)

public:
    HostWindow();

    /// False, with the reason in the window, when there is no reference to be had.
    bool Open(const QString& file);
    bool Save(const QString& file);
    /// What the window says about the reference.
    QString Text() const { return text_->text(); }

private:
    void AskAndOpen();
    void AskAndSave();
    void Tell();
    QString Footprint() const;
    void FillTable();

    Tellurion::BGeoReference reference_;
    QPixmap picture_;
    QSize size_;
    QString file_;
    MapView* view_;
    QLabel* text_;
    QTableWidget* points_;
};
