#pragma once

#include "platform/Workspace.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace orvello {

class Log;

/// Where the product's site is.
struct ProductSite {
    QString host;       ///< "www.example.org", a port may follow; empty for none
    QStringList copies; ///< folders with a copy of the site, in the order of preference

    /// The address of a page: over HTTP where there is a host, else that of its index.html in the first copy
    /// that has one. Empty when it is nowhere.
    QUrl page(const QString& path) const;

    /// The host that the program was built for and the copies that belong to a program in `folder`.
    static ProductSite ofProgram(const QString& folder = QCoreApplication::applicationDirPath());
};

/// Opens pages and applications the way the desktop does.
class DesktopWorkspace : public Workspace {
  public:
    explicit DesktopWorkspace(Log& log, ProductSite site = ProductSite::ofProgram());

    void openWebPage(const std::string& path) override;
    void launchApplication(const std::string& path) override;

  private:
    Log& log_;
    ProductSite site_;
};

} // namespace orvello
