<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>fxtools::Diagnosis</name>
    <message>
        <source>The PLC answers ENQ but no request. Is another program using this port? Is it an FX programming port?</source>
        <translation>Die SPS antwortet auf ENQ, aber auf keine Anfrage. Benutzt ein anderes Programm diese Schnittstelle? Ist es die Programmierschnittstelle einer FX?</translation>
    </message>
    <message>
        <source>No reply at all. Is the PLC on? Is the cable in the programming port? Are the send and receive lines swapped?</source>
        <translation>Gar keine Antwort. Ist die SPS eingeschaltet? Steckt das Kabel in der Programmierschnittstelle? Sind Sende- und Empfangsleitung vertauscht?</translation>
    </message>
    <message>
        <source>Something on this line sends by itself: %1. Is it a scale or a code reader? Is it the right port?</source>
        <translation>Etwas an dieser Leitung sendet von sich aus: %1. Ist es eine Waage oder ein Codeleser? Ist es die richtige Schnittstelle?</translation>
    </message>
    <message>
        <source>The PLC answers, but refuses the request (NAK). Line settings and wiring are correct. Try to read another register.</source>
        <translation>Die SPS antwortet, lehnt die Anfrage aber ab (NAK). Einstellungen und Verdrahtung der Leitung stimmen. Ein anderes Register lesen.</translation>
    </message>
    <message>
        <source>The link was lost. Was the adapter unplugged, or did the server close the connection?</source>
        <translation>Die Verbindung ging verloren. Wurde der Adapter abgezogen, oder hat der Server die Verbindung geschlossen?</translation>
    </message>
    <message>
        <source>Interrupted before there was a result.</source>
        <translation>Abgebrochen, bevor es ein Ergebnis gab.</translation>
    </message>
    <message>
        <source>The replies are right but late. Set a longer --timeout, or leave it out: then it adapts.</source>
        <translation>Die Antworten sind richtig, kommen aber zu spät. Mit --timeout länger warten oder es weglassen: dann passt sich die Wartezeit an.</translation>
    </message>
    <message>
        <source>Received characters have bit 7 set: the data bits or the parity of the two ends differ. FX ports use 7E1.</source>
        <translation>In empfangenen Zeichen ist Bit 7 gesetzt: Datenbits oder Parität der beiden Enden sind verschieden. FX-Schnittstellen benutzen 7E1.</translation>
    </message>
    <message>
        <source>The request comes back. Either the adapter echoes, or its send and receive lines are connected.</source>
        <translation>Die Anfrage kommt zurück. Entweder gibt der Adapter ein Echo, oder seine Sende- und Empfangsleitung sind verbunden.</translation>
    </message>
    <message>
        <source>The right reply comes with extra characters. Check the converter on this line; --tolerant accepts such replies.</source>
        <translation>Die richtige Antwort kommt mit überzähligen Zeichen. Den Umsetzer an dieser Leitung prüfen; --tolerant nimmt solche Antworten an.</translation>
    </message>
    <message>
        <source>Replies are damaged. Check the baud rate, the parity and the cable, and look for electrical interference.</source>
        <translation>Antworten sind beschädigt. Baudrate, Parität und Kabel prüfen und nach elektrischen Störquellen suchen.</translation>
    </message>
    <message>
        <source>Blocks of %1 bytes fail (%2): use at most %3 words in a frame.</source>
        <translation>Blöcke von %1 Byte schlagen fehl (%2): höchstens %3 Wörter in einem Telegramm benutzen.</translation>
    </message>
    <message>
        <source>The PLC answered (%1), then no more. Was it switched off, or is a plug loose?</source>
        <translation>Die SPS hat geantwortet (%1), dann nicht mehr. Wurde sie ausgeschaltet, oder ist ein Stecker lose?</translation>
    </message>
    <message>
        <source>The PLC answers (%1). %2</source>
        <translation>Die SPS antwortet (%1). %2</translation>
    </message>
    <message>
        <source>All is well.</source>
        <translation>Alles ist in Ordnung.</translation>
    </message>
    <message>
        <source>Only %1 % of %2</source>
        <translation>Nur %1 % von %2</translation>
    </message>
    <message>
        <source>All but %1 of %2</source>
        <translation>Alle bis auf %1 von %2</translation>
    </message>
    <message>
        <source>%1 exchanges were good; the most frequent error is &apos;%2&apos;. %3</source>
        <translation>%1 Abfragen waren gut; der häufigste Fehler ist „%2“. %3</translation>
    </message>
</context>
<context>
    <name>fxtools::ExchangeKind</name>
    <message>
        <source>write</source>
        <translation>Schreiben</translation>
    </message>
    <message>
        <source>one-off read</source>
        <translation>einmaliges Lesen</translation>
    </message>
    <message>
        <source>cyclic read</source>
        <translation>zyklisches Lesen</translation>
    </message>
    <message>
        <source>recipe download</source>
        <translation>Rezept schreiben</translation>
    </message>
    <message>
        <source>recipe upload</source>
        <translation>Rezept lesen</translation>
    </message>
</context>
<context>
    <name>fxtools::ReplyVerdict</name>
    <message>
        <source>good</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>no reply</source>
        <translation>keine Antwort</translation>
    </message>
    <message>
        <source>refused by the PLC (NAK)</source>
        <translation>von der SPS abgelehnt (NAK)</translation>
    </message>
    <message>
        <source>incomplete reply</source>
        <translation>unvollständige Antwort</translation>
    </message>
    <message>
        <source>reply too long</source>
        <translation>zu lange Antwort</translation>
    </message>
    <message>
        <source>bit 7 set: check data bits and parity</source>
        <translation>Bit 7 gesetzt: Datenbits und Parität prüfen</translation>
    </message>
    <message>
        <source>echo of the request</source>
        <translation>Echo der Anfrage</translation>
    </message>
    <message>
        <source>not a frame</source>
        <translation>kein Telegramm</translation>
    </message>
    <message>
        <source>right reply among extra characters</source>
        <translation>richtige Antwort zwischen überzähligen Zeichen</translation>
    </message>
    <message>
        <source>something on this line sends by itself</source>
        <translation>etwas an dieser Leitung sendet von sich aus</translation>
    </message>
    <message>
        <source>damaged: wrong checksum</source>
        <translation>beschädigt: falsche Prüfsumme</translation>
    </message>
    <message>
        <source>late reply</source>
        <translation>verspätete Antwort</translation>
    </message>
    <message>
        <source>the link was lost</source>
        <translation>die Verbindung ging verloren</translation>
    </message>
    <message>
        <source>interrupted</source>
        <translation>abgebrochen</translation>
    </message>
</context>
<context>
    <name>fxview::AlarmBook</name>
    <message>
        <source>raised</source>
        <translation>gekommen</translation>
    </message>
    <message>
        <source>cleared</source>
        <translation>gegangen</translation>
    </message>
    <message>
        <source>acknowledged</source>
        <translation>quittiert</translation>
    </message>
    <message>
        <source>too low</source>
        <translation>zu tief</translation>
    </message>
    <message>
        <source>too high</source>
        <translation>zu hoch</translation>
    </message>
</context>
<context>
    <name>fxview::AlarmFile</name>
    <message>
        <source>The history of alarms cannot be written: %1. Make room on the disk; %2 events wait, %3 are lost.</source>
        <translation>Der Verlauf der Alarme kann nicht geschrieben werden: %1. Auf der Platte Platz schaffen; %2 Ereignisse warten, %3 sind verloren.</translation>
    </message>
</context>
<context>
    <name>fxview::AlarmPage</name>
    <message>
        <source>Open alarms</source>
        <translation>Offene Alarme</translation>
    </message>
    <message>
        <source>History of alarms</source>
        <translation>Verlauf der Alarme</translation>
    </message>
    <message>
        <source>What happened, the newest first:</source>
        <translation>Was geschah, das Neueste zuerst:</translation>
    </message>
    <message>
        <source>Ac&amp;knowledge</source>
        <translation>&amp;Quittieren</translation>
    </message>
    <message>
        <source>Acknowle&amp;dge all</source>
        <translation>Alle q&amp;uittieren</translation>
    </message>
</context>
<context>
    <name>fxview::AlarmTable</name>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Tag</source>
        <translation>Variable</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Raised</source>
        <translation>Gekommen</translation>
    </message>
    <message>
        <source>Cleared</source>
        <translation>Gegangen</translation>
    </message>
    <message>
        <source>cleared, not acknowledged</source>
        <translation>gegangen, nicht quittiert</translation>
    </message>
    <message>
        <source>active, acknowledged</source>
        <translation>aktiv, quittiert</translation>
    </message>
    <message>
        <source>ACTIVE</source>
        <translation>AKTIV</translation>
    </message>
    <message>
        <source>%1: %2, limit %3</source>
        <translation>%1: %2, Grenze %3</translation>
    </message>
    <message>
        <source>%1 (%2 times)</source>
        <translation>%1 (%2-mal)</translation>
    </message>
</context>
<context>
    <name>fxview::ElementView</name>
    <message>
        <source>Not written</source>
        <translation>Nicht geschrieben</translation>
    </message>
    <message>
        <source>NOT as wanted</source>
        <translation>NICHT wie gewollt</translation>
    </message>
    <message>
        <source>UNKNOWN</source>
        <translation>UNBEKANNT</translation>
    </message>
    <message>
        <source>ALARM low</source>
        <translation>ALARM tief</translation>
    </message>
    <message>
        <source>ALARM high</source>
        <translation>ALARM hoch</translation>
    </message>
    <message>
        <source>RELEASE not confirmed</source>
        <translation>LOSLASSEN nicht bestätigt</translation>
    </message>
    <message>
        <source>writing…</source>
        <translation>schreibt …</translation>
    </message>
    <message>
        <source>STILL ON?</source>
        <translation>NOCH EIN?</translation>
    </message>
</context>
<context>
    <name>fxview::FaultPanel</name>
    <message>
        <source>No answer</source>
        <translation>Keine Antwort</translation>
    </message>
    <message>
        <source>Refused</source>
        <translation>Abgelehnt</translation>
    </message>
    <message>
        <source>Wrong sum</source>
        <translation>Falsche Summe</translation>
    </message>
    <message>
        <source>Flipped bits</source>
        <translation>Gekippte Bits</translation>
    </message>
    <message>
        <source>0.4 s late</source>
        <translation>400 ms zu spät</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>&amp;No faults</source>
        <translation>&amp;Keine Störungen</translation>
    </message>
</context>
<context>
    <name>fxview::HistogramView</name>
    <message>
        <source>Response times</source>
        <translation>Antwortzeiten</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
</context>
<context>
    <name>fxview::InputPanel</name>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Program</source>
        <translation>Programm</translation>
    </message>
    <message>
        <source>Inputs</source>
        <translation>Eingänge</translation>
    </message>
    <message>
        <source>No tag is an input (X)</source>
        <translation>Keine Variable ist ein Eingang (X)</translation>
    </message>
    <message>
        <source>Register to set</source>
        <translation>Register, das gesetzt wird</translation>
    </message>
    <message>
        <source>register, D100</source>
        <translation>Register, D100</translation>
    </message>
    <message>
        <source>Value to set</source>
        <translation>Wert, der gesetzt wird</translation>
    </message>
    <message>
        <source>value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>S&amp;et</source>
        <translation>Set&amp;zen</translation>
    </message>
</context>
<context>
    <name>fxview::LinePage</name>
    <message>
        <source>Frames</source>
        <translation>Telegramme</translation>
    </message>
    <message>
        <source>Nothing is known of the line yet</source>
        <translation>Von der Leitung ist noch nichts bekannt</translation>
    </message>
    <message>
        <source>%1 answers; half within %2 ms, 99 of 100 within %3 ms, the slowest %4 ms</source>
        <translation>%1 Antworten; die Hälfte in %2 ms, 99 von 100 in %3 ms, die langsamste in %4 ms</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>links lost: %1</source>
        <translation>Verbindung verloren: %1-mal</translation>
    </message>
    <message>
        <source>No errors</source>
        <translation>Keine Fehler</translation>
    </message>
    <message>
        <source>Errors: %1</source>
        <translation>Fehler: %1</translation>
    </message>
    <message>
        <source>The simulated PLC</source>
        <translation>Die simulierte SPS</translation>
    </message>
    <message>
        <source>&amp;Faults</source>
        <translation>&amp;Störungen</translation>
    </message>
    <message>
        <source>&amp;Inputs</source>
        <translation>&amp;Eingänge</translation>
    </message>
    <message>
        <source>All tags are read as often as they should be</source>
        <translation>Alle Variablen werden so oft gelesen, wie sie sollen</translation>
    </message>
    <message numerus="yes">
        <source>The line is too slow for %1 and %n more</source>
        <translation>
            <numerusform>Die Leitung ist zu langsam für %1 und eine weitere</numerusform>
            <numerusform>Die Leitung ist zu langsam für %1 und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>The line is too slow for %1</source>
        <translation>Die Leitung ist zu langsam für %1</translation>
    </message>
    <message>
        <source>Line load %1 %</source>
        <translation>Leitungslast %1 %</translation>
    </message>
</context>
<context>
    <name>fxview::MainWindow</name>
    <message>
        <source>%1 (a simulated PLC) – fxview</source>
        <translation>%1 (eine simulierte SPS) – fxview</translation>
    </message>
    <message>
        <source>%1 – fxview</source>
        <translation>%1 – fxview</translation>
    </message>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>&amp;Values</source>
        <translation>&amp;Werte</translation>
    </message>
    <message>
        <source>&amp;Trends</source>
        <translation>&amp;Verläufe</translation>
    </message>
    <message>
        <source>&amp;Alarms</source>
        <translation>&amp;Alarme</translation>
    </message>
    <message>
        <source>&amp;Line</source>
        <translation>&amp;Leitung</translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation>Verbinde …</translation>
    </message>
    <message>
        <source>&apos;%1&apos;: %2</source>
        <translation>„%1“: %2</translation>
    </message>
    <message>
        <source>&amp;Alarms (%1)</source>
        <translation>&amp;Alarme (%1)</translation>
    </message>
    <message>
        <source>%1 answers</source>
        <translation>%1 antwortet</translation>
    </message>
    <message>
        <source>%1 does not answer</source>
        <translation>%1 antwortet nicht</translation>
    </message>
    <message>
        <source>%1 does not answer: %2. Check the cable and the power of the PLC; the window goes on trying.</source>
        <translation>%1 antwortet nicht: %2. Kabel und Stromversorgung der SPS prüfen; das Fenster versucht es weiter.</translation>
    </message>
    <message>
        <source>not connected</source>
        <translation>nicht verbunden</translation>
    </message>
    <message>
        <source>%1. Mend this and start fxview again.</source>
        <translation>%1. Dies beheben und fxview neu starten.</translation>
    </message>
    <message>
        <source>&amp;Recipes</source>
        <translation>&amp;Rezepte</translation>
    </message>
    <message>
        <source>S&amp;creen</source>
        <translation>&amp;Bild</translation>
    </message>
    <message>
        <source>%1 is still on, though the release of its push button was sent three times: the program of the PLC may hold it.</source>
        <translation>%1 ist noch ein, obwohl das Loslassen des Tasters dreimal gesendet wurde: das Programm der SPS hält es vielleicht.</translation>
    </message>
    <message>
        <source>%1 (the first of %2 mistakes; the page Screen lists them)</source>
        <translation>%1 (der erste von %2 Fehlern; die Seite Bild zeigt sie)</translation>
    </message>
    <message>
        <source>%1 may still be on: the PLC has not confirmed the release of the push button. It is sent again as soon as the PLC answers; until then, stop the machine by its own switches.</source>
        <translation>%1 ist vielleicht noch ein: die SPS hat das Loslassen des Tasters nicht bestätigt. Es wird wieder gesendet, sobald die SPS antwortet; bis dahin die Maschine mit ihren eigenen Schaltern anhalten.</translation>
    </message>
    <message>
        <source>%1. Rows with a mistake are left out: there is no value, no alarm for them. Mend the file and start fxview again.</source>
        <translation>Zeilen mit einem Fehler fehlen: für sie gibt es keinen Wert und keinen Alarm. Die Datei berichtigen und fxview neu starten. Der erste Fehler: %1</translation>
    </message>
    <message>
        <source>a push button is not released yet</source>
        <translation>ein Taster ist noch nicht losgelassen</translation>
    </message>
    <message>
        <source>%1: no new values</source>
        <translation>%1: keine neuen Werte</translation>
    </message>
    <message>
        <source>Simulated PLC</source>
        <translation>Simulierte SPS</translation>
    </message>
</context>
<context>
    <name>fxview::NumericEntryView</name>
    <message>
        <source>New value: %1</source>
        <translation>Neuer Wert: %1</translation>
    </message>
    <message>
        <source>new value</source>
        <translation>neuer Wert</translation>
    </message>
</context>
<context>
    <name>fxview::PlanView</name>
    <message>
        <source>Block</source>
        <translation>Block</translation>
    </message>
    <message>
        <source>Memory</source>
        <translation>Speicher</translation>
    </message>
    <message>
        <source>Gaps</source>
        <translation>Lücken</translation>
    </message>
    <message>
        <source>Cost in ms</source>
        <translation>Kosten in ms</translation>
    </message>
    <message>
        <source>Polling plan</source>
        <translation>Abfrageplan</translation>
    </message>
    <message>
        <source>%1 of %2 registers needed</source>
        <translation>%1 von %2 Registern gebraucht</translation>
    </message>
</context>
<context>
    <name>fxview::ProblemBar</name>
    <message>
        <source>What is wrong</source>
        <translation>Was nicht stimmt</translation>
    </message>
    <message numerus="yes">
        <source>%1 (and %n more)</source>
        <translation>
            <numerusform>%1 (und %n weiteres)</numerusform>
            <numerusform>%1 (und %n weitere)</numerusform>
        </translation>
    </message>
    <message>
        <source>Clo&amp;se</source>
        <translation>S&amp;chließen</translation>
    </message>
</context>
<context>
    <name>fxview::RecipeNotes</name>
    <message>
        <source>What is known of the transfer cannot be kept on the disk: %1: %2. Do not close the window before the transfer has ended.</source>
        <translation>Was über die Übertragung bekannt ist, lässt sich nicht auf der Platte festhalten: %1: %2. Das Fenster nicht schließen, bevor die Übertragung beendet ist.</translation>
    </message>
</context>
<context>
    <name>fxview::RecipePage</name>
    <message>
        <source>&amp;Browse…</source>
        <translation>&amp;Durchsuchen …</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>Co&amp;mpare</source>
        <translation>V&amp;ergleichen</translation>
    </message>
    <message>
        <source>&amp;Download…</source>
        <translation>In die S&amp;PS schreiben …</translation>
    </message>
    <message>
        <source>&amp;Upload…</source>
        <translation>A&amp;us der SPS lesen …</translation>
    </message>
    <message>
        <source>Canc&amp;el</source>
        <translation>Abbrec&amp;hen</translation>
    </message>
    <message>
        <source>&amp;Yes, write</source>
        <translation>&amp;Ja, schreiben</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Nein</translation>
    </message>
    <message>
        <source>Open a file with a line ADDRESS,VALUE for each register, or name registers and a new file to upload into</source>
        <translation>Eine Datei mit einer Zeile ADRESSE,WERT für jedes Register öffnen, oder Register und eine neue Datei nennen, in die aus der SPS gelesen wird</translation>
    </message>
    <message>
        <source>Recipe file</source>
        <translation>Rezeptdatei</translation>
    </message>
    <message>
        <source>recipe file</source>
        <translation>Rezeptdatei</translation>
    </message>
    <message>
        <source>Registers to upload</source>
        <translation>Register, die gelesen werden</translation>
    </message>
    <message>
        <source>registers to upload, for example D1000:64 D200</source>
        <translation>Register, die aus der SPS gelesen werden, zum Beispiel D1000:64 D200</translation>
    </message>
    <message>
        <source>From the file to the PLC</source>
        <translation>Von der Datei in die SPS</translation>
    </message>
    <message>
        <source>From the PLC to the file</source>
        <translation>Von der SPS in die Datei</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Recipe</source>
        <translation>Rezept</translation>
    </message>
    <message>
        <source>Recipes (*.csv);;All files (*)</source>
        <translation>Rezepte (*.csv);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Wählen</translation>
    </message>
    <message>
        <source>Writing %1 to the PLC…</source>
        <translation>%1 wird in die SPS geschrieben …</translation>
    </message>
    <message>
        <source>Reading from the PLC…</source>
        <translation>Aus der SPS wird gelesen …</translation>
    </message>
    <message>
        <source>Comparing…</source>
        <translation>Vergleiche …</translation>
    </message>
    <message>
        <source>Reading %1 back…</source>
        <translation>%1 wird zurückgelesen …</translation>
    </message>
    <message>
        <source>The window ended while %1 was written to the PLC. Written: %2. UNKNOWN whether written: %3. Download it again, or compare.</source>
        <translation>Das Fenster endete, während %1 in die SPS geschrieben wurde. Geschrieben: %2. UNBEKANNT, ob geschrieben: %3. Noch einmal schreiben oder vergleichen.</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Write %1 values of %2 to the PLC? %3 differ from what it held, %4 were not read.</source>
        <translation>%1 Werte von %2 in die SPS schreiben? %3 sind anders als zuletzt in der SPS, %4 wurden nicht gelesen.</translation>
    </message>
    <message>
        <source>&amp;Yes, replace</source>
        <translation>&amp;Ja, ersetzen</translation>
    </message>
    <message>
        <source>%1 exists. Replace it by the values that the PLC holds in %2?</source>
        <translation>%1 gibt es schon. Durch die Werte ersetzen, die die SPS in %2 hat?</translation>
    </message>
    <message>
        <source>Nothing was uploaded</source>
        <translation>Nichts wurde aus der SPS gelesen</translation>
    </message>
    <message>
        <source>Nothing was written</source>
        <translation>Nichts wurde geschrieben</translation>
    </message>
    <message>
        <source>Not compared to the end: %1</source>
        <translation>Nicht zu Ende verglichen: %1</translation>
    </message>
    <message>
        <source>Nothing was uploaded: %1. The file is as it was.</source>
        <translation>Nichts wurde aus der SPS gelesen: %1. Die Datei ist, wie sie war.</translation>
    </message>
    <message>
        <source>Not opened: %1</source>
        <translation>Nicht geöffnet: %1</translation>
    </message>
    <message>
        <source>%1: %2 registers; %3 differ from the PLC, %4 were not read</source>
        <translation>%1: %2 Register; %3 sind anders als in der SPS, %4 wurden nicht gelesen</translation>
    </message>
    <message>
        <source>%1. May not be downloaded: %2</source>
        <translation>%1. Darf nicht in die SPS geschrieben werden: %2</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Registers</source>
        <translation>Register</translation>
    </message>
    <message>
        <source>Open the file first: the table still shows %1</source>
        <translation>Zuerst die Datei öffnen: die Tabelle zeigt noch %1</translation>
    </message>
</context>
<context>
    <name>fxview::RecipeTable</name>
    <message>
        <source>? not read yet</source>
        <translation>? noch nicht gelesen</translation>
    </message>
    <message>
        <source>? not read: %1</source>
        <translation>? nicht gelesen: %1</translation>
    </message>
    <message>
        <source>= same</source>
        <translation>= gleich</translation>
    </message>
    <message>
        <source>≠ the PLC has %1 more</source>
        <translation>≠ die SPS hat %1 mehr</translation>
    </message>
    <message>
        <source>≠ the PLC has %1 less</source>
        <translation>≠ die SPS hat %1 weniger</translation>
    </message>
    <message>
        <source>may not be written: %1</source>
        <translation>darf nicht geschrieben werden: %1</translation>
    </message>
    <message>
        <source>NOT written</source>
        <translation>NICHT geschrieben</translation>
    </message>
    <message>
        <source>UNKNOWN whether written</source>
        <translation>UNBEKANNT, ob geschrieben</translation>
    </message>
    <message>
        <source>written, not read back</source>
        <translation>geschrieben, nicht zurückgelesen</translation>
    </message>
    <message>
        <source>written and read back</source>
        <translation>geschrieben und zurückgelesen</translation>
    </message>
    <message>
        <source>written, but read back DIFFERENT</source>
        <translation>geschrieben, aber ANDERS zurückgelesen</translation>
    </message>
    <message>
        <source>%1: %2 (%3)</source>
        <translation>%1: %2 (%3)</translation>
    </message>
    <message>
        <source>All %1 values of %2 were written, but not all could be read back: %3. Compare again.</source>
        <translation>Alle %1 Werte von %2 wurden geschrieben, aber nicht alle ließen sich zurücklesen: %3. Noch einmal vergleichen.</translation>
    </message>
    <message>
        <source>Done: all %1 values of %2 are in the PLC, read back</source>
        <translation>Fertig: alle %1 Werte von %2 sind in der SPS, zurückgelesen</translation>
    </message>
    <message>
        <source>All %1 values of %2 were written, but the PLC holds others in %3. Does its program write there?</source>
        <translation>Alle %1 Werte von %2 wurden geschrieben, aber in %3 hat die SPS andere. Schreibt dort ihr Programm?</translation>
    </message>
    <message>
        <source>and more, see the table</source>
        <translation>und weitere, siehe Tabelle</translation>
    </message>
    <message>
        <source>Nothing of %1 was written: %2</source>
        <translation>Nichts von %1 wurde geschrieben: %2</translation>
    </message>
    <message>
        <source>written</source>
        <translation>geschrieben</translation>
    </message>
    <message>
        <source>Only a part of %1 is in the PLC (%2). %3. Download it again, or write the old values back.</source>
        <translation>Nur ein Teil von %1 ist in der SPS (%2). %3. Noch einmal schreiben oder die alten Werte zurückschreiben.</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Tag</source>
        <translation>Variable</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>PLC</source>
        <translation>SPS</translation>
    </message>
    <message>
        <source>PLC, %1 s ago</source>
        <translation>SPS, vor %1 s</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>Unterschied</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>%1 values of the PLC are in %2, but not all could be compared afterwards: %3</source>
        <translation>%1 Werte der SPS sind in %2, aber nicht alle konnten danach verglichen werden: %3</translation>
    </message>
    <message>
        <source>Done: %1 values of the PLC are in %2, compared</source>
        <translation>Fertig: %1 Werte der SPS sind in %2, verglichen</translation>
    </message>
    <message>
        <source>%1 values of the PLC are in %2, but the PLC now holds others in %3. Does its program write there?</source>
        <translation>%1 Werte der SPS sind in %2, aber die SPS enthält jetzt andere in %3. Schreibt ihr Programm dort?</translation>
    </message>
</context>
<context>
    <name>fxview::ScreenPage</name>
    <message>
        <source>Pages of the screen</source>
        <translation>Seiten des Bildes</translation>
    </message>
    <message>
        <source>Mistakes in the screen file</source>
        <translation>Fehler in der Bilddatei</translation>
    </message>
    <message>
        <source>%1. The last good screen is still shown.</source>
        <translation>%1. Das letzte gute Bild wird weiter gezeigt.</translation>
    </message>
    <message>
        <source>of the screen that is shown: %1</source>
        <translation>zum gezeigten Bild: %1</translation>
    </message>
</context>
<context>
    <name>fxview::TrendPage</name>
    <message>
        <source>10 seconds</source>
        <translation>10 Sekunden</translation>
    </message>
    <message>
        <source>1 minute</source>
        <translation>1 Minute</translation>
    </message>
    <message>
        <source>10 minutes</source>
        <translation>10 Minuten</translation>
    </message>
    <message>
        <source>1 hour</source>
        <translation>1 Stunde</translation>
    </message>
    <message>
        <source>8 hours</source>
        <translation>8 Stunden</translation>
    </message>
    <message>
        <source>1 day</source>
        <translation>1 Tag</translation>
    </message>
    <message>
        <source>Values at the cursors</source>
        <translation>Werte an den Marken</translation>
    </message>
    <message>
        <source>Curve</source>
        <translation>Kurve</translation>
    </message>
    <message>
        <source>Now</source>
        <translation>Jetzt</translation>
    </message>
    <message>
        <source>At A</source>
        <translation>Bei A</translation>
    </message>
    <message>
        <source>At B</source>
        <translation>Bei B</translation>
    </message>
    <message>
        <source>B − A</source>
        <translation>B − A</translation>
    </message>
    <message>
        <source>Add a tag</source>
        <translation>Variable hinzufügen</translation>
    </message>
    <message>
        <source>How much time</source>
        <translation>Wie viel Zeit</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>E&amp;xportieren</translation>
    </message>
    <message>
        <source>&amp;Follow</source>
        <translation>&amp;Mitlaufen</translation>
    </message>
    <message>
        <source>B − A, in %1 s</source>
        <translation>B − A, in %1 s</translation>
    </message>
    <message>
        <source>Trend</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Saved as %1</source>
        <translation>Gespeichert als %1</translation>
    </message>
    <message>
        <source>Re&amp;move</source>
        <translation>E&amp;ntfernen</translation>
    </message>
    <message>
        <source>The trend was not saved: %1: %2. Make room on the disk, or make the folder writable.</source>
        <translation>Der Verlauf wurde nicht gespeichert: %1: %2. Auf der Platte Platz schaffen oder den Ordner beschreibbar machen.</translation>
    </message>
</context>
<context>
    <name>fxview::TrendView</name>
    <message>
        <source>Trend</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Add a tag above, or press Space on a row of the values</source>
        <translation>Oben eine Variable hinzufügen, oder bei den Werten auf einer Zeile die Leertaste drücken</translation>
    </message>
    <message>
        <source>time (UTC)</source>
        <translation>Zeit (UTC)</translation>
    </message>
    <message>
        <source>%1 lowest</source>
        <translation>%1 kleinster</translation>
    </message>
    <message>
        <source>%1 highest</source>
        <translation>%1 größter</translation>
    </message>
    <message>
        <source>%1 in %2</source>
        <translation>%1 in %2</translation>
    </message>
</context>
<context>
    <name>fxview::ValueBook</name>
    <message>
        <source>not read yet</source>
        <translation>noch nicht gelesen</translation>
    </message>
    <message>
        <source>no newer reading</source>
        <translation>nichts Neueres gelesen</translation>
    </message>
    <message>
        <source>on</source>
        <translation>ein</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
</context>
<context>
    <name>fxview::ValueTable</name>
    <message>
        <source>good</source>
        <translation>gut</translation>
    </message>
    <message>
        <source>stale</source>
        <translation>veraltet</translation>
    </message>
    <message>
        <source>bad</source>
        <translation>schlecht</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Last minute</source>
        <translation>Letzte Minute</translation>
    </message>
    <message>
        <source>Age</source>
        <translation>Alter</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>ALARM low</source>
        <translation>ALARM tief</translation>
    </message>
    <message>
        <source>ALARM high</source>
        <translation>ALARM hoch</translation>
    </message>
    <message>
        <source>name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>unit</source>
        <translation>Einheit</translation>
    </message>
    <message>
        <source>state</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>read (UTC)</source>
        <translation>gelesen (UTC)</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>description</source>
        <translation>Beschreibung</translation>
    </message>
</context>
<context>
    <name>fxview::ValuesPage</name>
    <message>
        <source>Filter by name, address or description (Ctrl+F)</source>
        <translation>Nach Name, Adresse oder Beschreibung filtern (Strg+F)</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Werte</translation>
    </message>
    <message>
        <source>Write its value</source>
        <translation>Wert schreiben</translation>
    </message>
    <message>
        <source>Show its trend</source>
        <translation>Verlauf zeigen</translation>
    </message>
    <message>
        <source>Copy as CSV</source>
        <translation>Als CSV kopieren</translation>
    </message>
    <message>
        <source>%1 of %2 tags</source>
        <translation>%1 von %2 Variablen</translation>
    </message>
</context>
<context>
    <name>fxview::WriteBar</name>
    <message>
        <source>Done: %1 was %2, is now %3 (read back)</source>
        <translation>Fertig: %1 war %2 und ist jetzt %3 (zurückgelesen)</translation>
    </message>
    <message>
        <source>Not written: %1</source>
        <translation>Nicht geschrieben: %1</translation>
    </message>
    <message>
        <source>NOT as wanted: %1 is now %2; %3</source>
        <translation>NICHT wie gewollt: %1 ist jetzt %2; %3</translation>
    </message>
    <message>
        <source>UNKNOWN whether %1 was written: %2</source>
        <translation>UNBEKANNT, ob %1 geschrieben wurde: %2</translation>
    </message>
    <message>
        <source>O&amp;ff</source>
        <translation>A&amp;us</translation>
    </message>
    <message>
        <source>O&amp;n</source>
        <translation>E&amp;in</translation>
    </message>
    <message>
        <source>&amp;Write…</source>
        <translation>&amp;Schreiben …</translation>
    </message>
    <message>
        <source>&amp;Yes, write</source>
        <translation>&amp;Ja, schreiben</translation>
    </message>
    <message>
        <source>Write a value</source>
        <translation>Einen Wert schreiben</translation>
    </message>
    <message>
        <source>New value</source>
        <translation>Neuer Wert</translation>
    </message>
    <message>
        <source>new value</source>
        <translation>neuer Wert</translation>
    </message>
    <message>
        <source>read-only</source>
        <translation>nur lesbar</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <translation>%1 bis %2</translation>
    </message>
    <message>
        <source>%1 or more</source>
        <translation>%1 oder mehr</translation>
    </message>
    <message>
        <source>%1 or less</source>
        <translation>%1 oder weniger</translation>
    </message>
    <message>
        <source>The PLC does not answer: nothing can be written now</source>
        <translation>Die SPS antwortet nicht: jetzt kann nichts geschrieben werden</translation>
    </message>
    <message>
        <source>below the minimum of %1</source>
        <translation>unter dem Minimum von %1</translation>
    </message>
    <message>
        <source>above the maximum of %1</source>
        <translation>über dem Maximum von %1</translation>
    </message>
    <message>
        <source>UNKNOWN whether %1 was written: no result so far</source>
        <translation>UNBEKANNT, ob %1 geschrieben wurde: noch kein Ergebnis</translation>
    </message>
    <message>
        <source>Writing %1; waiting for what the PLC has then…</source>
        <translation>Schreibe %1 und warte, was die SPS dann hat …</translation>
    </message>
    <message>
        <source>Choose a row to write its value</source>
        <translation>Zum Schreiben eine Zeile wählen</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1 is %2</source>
        <translation>%1 ist %2</translation>
    </message>
    <message>
        <source>Write to %1 (%2): now %3, new %4?</source>
        <translation>%1 (%2) schreiben: jetzt %3, neu %4?</translation>
    </message>
    <message>
        <source>%1, rounded to steps of %2</source>
        <translation>%1, gerundet auf Schritte von %2</translation>
    </message>
    <message>
        <source>up to %1 characters</source>
        <translation>bis zu %1 Zeichen</translation>
    </message>
    <message>
        <source>%1 characters are too many</source>
        <translation>%1 Zeichen sind zu viele</translation>
    </message>
    <message>
        <source>Do not wa&amp;it</source>
        <translation>Nicht war&amp;ten</translation>
    </message>
    <message>
        <source>N&amp;o</source>
        <translation>&amp;Nein</translation>
    </message>
</context>
</TS>
