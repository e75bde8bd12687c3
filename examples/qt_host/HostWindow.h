#pragma once

#include "MapView.h"

#include <Tellurion/BGeoReference.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QTableWidget>

/// A small georeferencer: opens a raster, takes control points by clicks and by typed or pasted
/// coordinates, shows the residuals of the fit as they change, and saves the reference.
class HostWindow : public QMainWindow {
    Q_DECLARE_TR_FUNCTIONS(HostWindow)

public:
    HostWindow();

    /// Opens a raster with the control points that it may have. False, with the reason in the
    /// status bar, when Qt does not read it.
    bool OpenRaster(const QString& file);
    bool OpenPoints(const QString& file);
    bool Save(const QString& file);
    void SetSystem(const QString& text) { system_->setText(text); }
    /// Rows of two numbers, into the coordinates of the selected point and those after it.
    void Paste(const QString& text);

    MapView& View() { return *view_; }
    QString Report() const { return report_->text(); }  ///< what is shown of the fit
    QString Status() const;                             ///< the last message
    QString Residual(int row) const;                    ///< of a point, as shown
    void Select(int row) { table_->selectRow(row); }    ///< the point that Paste() begins at
    void SetUsed(int row, bool used);                   ///< as its check box

private:
    void BuildMenu();
    void AddPoint(const QPointF& pixel);
    void FillTable();
    void ReadTable();
    void Fit();
    void ShowResiduals();
    bool TakeSystem();
    bool Attempt(const std::function<void()>& work, const QString& done);
    void AskAndOpen();
    void AskAndOpenPoints();
    void AskAndSave();

    QString raster_;
    QSize size_;
    std::vector<Tellurion::BControlPoint> points_;
    std::vector<bool> has_world_;  ///< a clicked point has no coordinates yet
    std::vector<Tellurion::BFitResidual> residuals_;
    Tellurion::BGeoReference reference_;
    bool is_filling_ = false;

    MapView* view_;
    QTableWidget* table_;
    QComboBox* fit_;
    QLineEdit* system_;
    QLabel* report_;
};
