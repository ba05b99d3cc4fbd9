<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" sourcelanguage="en">
<context>
    <name>fast::Fast</name>
    <message>
        <source>Unable to get FAST status: HTTP request failed with status=%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse JSON to get FAST version: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>HTTP request failed with status=%1, message=%2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::FastHeaderView</name>
    <message>
        <source>All</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::FastSortFilterProxyModel</name>
    <message>
        <source>Registered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unregistered</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::FastTabWidget</name>
    <message>
        <source>Once the volumes of interest are listed:&lt;br&gt;&amp;nbsp;- Mount a VDS into current project by clicking on either &lt;img src=&apos;:/light/down_ok.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt; or &lt;img src=&apos;:/light/down_ko.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt;&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Unmount a VDS by clicking on &lt;img src=&apos;:/light/delete24.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt;&lt;/br&gt;&lt;br&gt;The icon &lt;img src=&apos;:/light/down_ok.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt; indicates that the VDS is not locally registered in the FAST™ virtual drive.&lt;/br&gt;&lt;br&gt;The icon &lt;img src=&apos;:/light/down_ko.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt; indicates that the VDS is locally registered in the FAST™ virtual drive.&lt;/br&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Checking connection to Bluware FAST™...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OSDU™ Data Platform browser</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Local VDS file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cloud VDS file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not connected to Bluware FAST™</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected to Bluware FAST™ %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected to Bluware FAST™ %1 but Korvane plugin is not available</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::FastTreeModel</name>
    <message>
        <source>Files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mount %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unmount %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete file %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::FastWidget</name>
    <message>
        <source>Unable to parse JSON to get VDS list: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to list VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Successfully registered VDS (url=%1) in Bluware FAST™ with id=%2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to register VDS (url=%1) in Bluware FAST™ with empty id!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to register VDS (url=%1) in Bluware FAST™: invalid parameters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>VDS (url=%1) already registered in Bluware FAST™.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to register VDS (url=%1) in Bluware FAST™. Unexpected error code: %2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to register VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Korvane™ was unable to register VDS in Bluware FAST™.
Please refer to Bluware FAST™ log files to get more information.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to mount VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Korvane™ was unable to mount VDS in Bluware FAST™.
Please refer to Bluware FAST™ and Korvane™ log files to get more information.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Successfully found a VDS (url=%1) already registered in Bluware FAST™ with id=%2.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluware FAST™ not reachable</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluware FAST™ could not be reached: nothing was unmounted.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::MountNewVolume</name>
    <message>
        <source>Mount a VDS with Bluware FAST™</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filename</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The filename corresponds to the mounted volume. This name will be displayed in the Project Browser of the current project as well as in the FAST™ local virtual drive.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zone of Interest</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Leave the fields below unchanged to mount the whole volume.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In-line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>X-line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Z</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluware FAST™ error : impossible to mount vds file : %1 : %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid filename</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File already exists</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluware FAST™ error : impossible to rename remote file %1.kv</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bluware FAST™ mount error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Impossible to mount VDS file : %1
Request response :
 %2 : %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A file name cannot be blank, contain / \ : * ? &quot; &lt; &gt; | or a control character, end in a dot or a blank, or be a device name (CON, PRN, AUX, NUL, CONIN$, CONOUT$, COM1 to COM9, LPT1 to LPT9, COM¹ to COM³, LPT¹ to LPT³), with or without an extension.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::OsduFastInitializer</name>
    <message>
        <source>Please specify all required initialization parameters in Korvane settings.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The OSDU™ Data Platform gave no refresh token: the next run will need the web browser to sign in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Amazon Web Services</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Microsoft Azure</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::OsduTreeModel</name>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Id</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Kind</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::OsduWidget</name>
    <message>
        <source>Cloud provider and OSDU™ Data Platform settings are defined in Tools&gt;Settings&gt;OSDU™ Data Platform/FAST™ pane.&lt;br&gt;Once these settings are defined, select a cloud provider and click on « Connect » to initialize the connection to OSDU™ Data Platform.&lt;/br&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When connected, search for VDS volumes.&lt;br&gt;Search with an empty filter to discover all VDS volumes.&lt;/br&gt;&lt;br&gt;Narrow your search by defining a filter applied on the following fields:&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Name&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Description&lt;/br&gt;&lt;br&gt;&amp;nbsp;- ID&lt;/br&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No results</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connect</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error Initializing OSDU</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to initialize the OSDU runtime environment.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to connect to OSDU environment</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OSDU Authentication: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OSDU session ended</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The OSDU™ Data Platform session has ended. Press « Connect » to sign in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to list VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to parse JSON to get VDS list: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n result(s) found</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>No result</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception while parsing JSON to get volume data from VDS: %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. Exception : %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reading datasets: %1 of %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Searching…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 (search cancelled after %2 of %3 datasets)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 result(s) found (the first %2 of %3 datasets were searched)</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n dataset(s) could not be read: %1</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Copy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No web browser could be opened. Open this address in one to sign in:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sign-in cancelled</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::SearchInput</name>
    <message>
        <source>Press search button to retrieve all available files...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::VdsTreeModel</name>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Id</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Path</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>fast::VdsWidget</name>
    <message>
        <source>Once FAST™ service is running, upload the local VDS volume:&lt;br&gt;&amp;nbsp;- Click on &lt;img src=&apos;:/light/projectopen24.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt; Open VDS button&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Select the .vds file and open it&lt;/br&gt;&lt;br&gt;&amp;nbsp;- In the new dialog to mount a VDS, enter a file name&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Define a zone of interest if needed then Save.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Once FAST™ service is running, upload the VDS volume from the cloud:&lt;br&gt;&amp;nbsp;- Paste the URL of the VDS&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Click on &lt;img src=&apos;:/light/down_ko.png&apos; width=&quot;12&quot; height=&quot;12&quot;&gt; Mount VDS button&lt;/br&gt;&lt;br&gt;&amp;nbsp;- In the new dialog to mount a VDS, enter a file name&lt;/br&gt;&lt;br&gt;&amp;nbsp;- Define a zone of interest if needed then Save.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Mount VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select VDS file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exception occurred while parsing JSON to get volume data from VDS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exception occurred</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to mount VDS (url=%1; id=%2) in Bluware FAST™. %3: %4</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>osdu::AuthorizationSession</name>
    <message>
        <source>Sign-in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Signing in with the stored session</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>not a port number</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to listen for the sign-in answer on port %1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sign-in timed out: no answer came back from the browser</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waiting for the sign-in in the web browser</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not found.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This answer did not come from the sign-in under way (state mismatch)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A sign-in answer without this sign-in&apos;s state was refused</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no authorization code came back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sign-in was refused by the authorization server</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Completing the sign-in with the authorization server</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Signed in. You can close this window.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1. You can close this window.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No web browser could be opened: the sign-in address is shown instead</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>osdu::OsduAuthProvider</name>
    <message>
        <source>HTTP status %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unable to reach the authorization server</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The authorization server failed to complete the sign-in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sign-in was refused by the authorization server</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sign-in failed: the authorization server did not issue a bearer token</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>its answer has no token_type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The setting %1 must be an https URL: plain http is refused for any host but this machine&apos;s loopback</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
