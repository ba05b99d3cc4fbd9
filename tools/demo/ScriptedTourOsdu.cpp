// The tour's OSDU steps: sign in through the OSDU page, search, and mount a dataset that FAST
// does not know yet.

#include "ScriptedTour.h"

#include "DemoWindow.h"
#include "PanelDriver.h"
#include "PanelTrees.h"
#include "ProjectStore.h"
#include "TestBrowser.h"

#include <fast/osdu/OsduFastInitializer.h>
#include <fast/osdu/OsduSettingsKeys.h>
#include <fast/osdu/SearchInput.h>
#include <fast/panel/MountNewVolume.h>
#include <fast/panel/OsduWidget.h>
#include <fast/trees/FastTreeView.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>

namespace {

constexpr fast::OsduFastInitializer::eCloudProvider kProvider = fast::OsduFastInitializer::AWS;
// Two token exchanges at most, each bounded by the panel's own sign-in time-out.
constexpr int kSignInTimeoutMs = 15000;
// One query, then one record fetch per hit.
constexpr int kSearchTimeoutMs = 15000;
// The mount dialog gives FAST up to 10 s to write the link it renames.
constexpr int kMountTimeoutMs = 15000;

QString settingsGroup()
{
    return QString::fromStdString(fast::OsduFastInitializer::getCloudProviderSettingsGroup(kProvider));
}

} // namespace

void ScriptedTour::osduSignIn()
{
    const QString authorizeUrl =
        QSettings().value(settingsGroup() + QLatin1Char('/') + QString::fromStdString(fast::OSDU_OAUTH_URL)).toString();
    if (authorizeUrl.isEmpty()) {
        // Run by hand against a FAST of one's own, the demo may well have no OSDU platform.
        say(tr("no OSDU settings in group %1 of %2: the OSDU steps are left out")
                .arg(settingsGroup(), QSettings().fileName()));
        return succeed();
    }
    fast::OsduWidget* page = osduSearchPage();
    QComboBox* provider = page ? providerChoice(*page) : nullptr;
    QPushButton* pageConnect = page ? connectButton(*page) : nullptr;
    if (!provider || !pageConnect || !searchInput(*page))
        return fail(tr("the panel has no OSDU page with a provider choice, a Connect button and a search box"));

    showPage(*m_window->panel(), page);
    provider->setCurrentIndex(kProvider);
    // The page takes the process-wide initializer made here, and with it this browser, which
    // follows the redirects of an authorization server that approves at once, as the emulator does.
    fast::OsduFastInitializer::instance(kProvider)->authProvider()->setBrowserOpener(testBrowser());
    say(tr("signing in to OSDU (%1 settings) at %2; a headless browser plays the person")
            .arg(settingsGroup(), authorizeUrl));
    pageConnect->click();
    if (m_done)
        return;
    if (!m_boxes.boxes().isEmpty())
        return fail(tr("the OSDU page could not start the sign-in"));
    waitUntil([page] { return searchInput(*page)->isEnabled(); }, kSignInTimeoutMs,
              tr("the OSDU sign-in to enable the search box"), [this] { osduSearch(); });
}

void ScriptedTour::osduSearch()
{
    fast::OsduWidget* page = osduSearchPage();
    QPushButton* pageSearch = page ? searchButton(*page) : nullptr;
    QLabel* results = page ? resultLine(*page) : nullptr;
    if (!pageSearch || !results)
        return fail(tr("the OSDU page has no Search button or result line"));
    say(tr("signed in; searching with an empty filter"));
    searchInput(*page)->clear();
    pageSearch->click();
    if (m_done)
        return;
    const QRegularExpression answered(QStringLiteral("^(\\d+ result\\(s\\) found|No result)$"));
    waitUntil([results, answered] { return answered.match(results->text()).hasMatch(); }, kSearchTimeoutMs,
              tr("the OSDU search results"), [this] { afterOsduSearch(); });
}

void ScriptedTour::afterOsduSearch()
{
    fast::OsduWidget* page = osduSearchPage();
    const QString results = resultLabel(*page);
    if (!results.endsWith(QStringLiteral("found")))
        return fail(tr("the OSDU search found no dataset; the page says \"%1\"").arg(results));
    say(tr("\"%1\"; %2 of them already known to FAST").arg(results).arg(registeredCount(page->treeView())));
    settleThen([this] {
        if (shootStep(QStringLiteral("5-osdu-results.png")))
            osduMount();
    });
}

void ScriptedTour::osduMount()
{
    fast::OsduWidget* page = osduSearchPage();
    fast::FastTreeView* tree = page->treeView();
    const int row = firstUnregisteredRow(tree);
    if (row < 0)
        return fail(tr("every dataset found is known to FAST already: none is left to mount afresh"));
    const fast::VdsModel dataset = *volumeAtRow(tree, row);
    m_osduDatasetUrl = dataset.url;

    say(tr("clicking the mount icon of \"%1\" (%2)").arg(dataset.name, QString::fromStdString(dataset.url)));
    clickCell(tree, row, 2);
    if (m_done)
        return;
    if (!m_boxes.boxes().isEmpty())
        return fail(tr("the panel could not register the dataset in FAST"));

    fast::MountNewVolume* dialog = openMountDialog(page);
    QLineEdit* name = dialog ? fileNameField(*dialog) : nullptr;
    QPushButton* dialogSave = dialog ? saveButton(*dialog) : nullptr;
    if (!name || !dialogSave)
        return fail(tr("the mount icon opened no mount dialog with a name field and a Save button"));
    m_osduFileName = freeFileName(QStringLiteral("osdu-volume"), m_window->project()->folder());
    name->setText(m_osduFileName);
    say(tr("the mount dialog is open; naming the file \"%1\" and saving").arg(m_osduFileName));
    dialogSave->click();
    if (m_done)
        return;
    waitUntil([this] { return m_window->project()->holds(m_osduFileName, fast::OSDU); }, kMountTimeoutMs,
              tr("the mounted dataset's file to reach the project"), [this] { afterOsduMount(); });
}

void ScriptedTour::afterOsduMount()
{
    say(tr("mounted; the project now holds \"%1\" (OSDU)").arg(m_osduFileName));
    // As a user would open the dataset to see its new file.
    if (fast::OsduWidget* page = osduSearchPage()) {
        const int row = rowOfVolume(page->treeView(), m_osduDatasetUrl);
        if (row >= 0)
            openRowWholly(page->treeView(), row);
    }
    settleThen([this] {
        if (shootStep(QStringLiteral("6-osdu-mounted.png")))
            succeed();
    });
}
