using System;
using System.Drawing;
using System.Windows.Forms;

namespace Orv.Dialogs {

// The log of one export: a modeless window, open while the export runs and until the user closes
// it.
public sealed class DialogLog : Form {
  static readonly Color[] s_colors = { SystemColors.WindowText, Color.FromArgb(160, 82, 0),
                                       Color.FromArgb(190, 0, 0) };

  readonly RichTextBox m_textBox = new RichTextBox { ReadOnly = true, HideSelection = false,
                                                     DetectUrls = false, Dock = DockStyle.Fill };
  readonly Button m_buttonCopy = new Button { Text = "&Copy to Clipboard" };
  readonly Button m_buttonClose = new Button { Text = "Close" };
  readonly TableLayoutPanel m_window = Look.Table(100);
  Font m_errorFont;  // null until it is needed

  public DialogLog() {
    Look.Prepare(this, "Velmor Exporter Log");
    Name = "Export Log";
    MaximizeBox = true;
    AcceptButton = m_buttonClose;
    CancelButton = m_buttonClose;
    m_textBox.BackColor = SystemColors.Window;
    m_window.RowStyles.Add(new RowStyle(SizeType.Percent, 100));
    m_window.RowStyles.Add(new RowStyle());
    m_window.Controls.Add(m_textBox);
    m_window.Controls.Add(Look.ButtonRow(m_buttonCopy, m_buttonClose));
    Controls.Add(m_window);
    m_buttonCopy.Click += (sender, e) => Bridge.Guard(() => Copy());
    m_buttonClose.Click += (sender, e) => Bridge.Guard(() => Close());
    Load += (sender, e) => Bridge.Guard(() => Arrange());
    Shown += (sender, e) => Bridge.Guard(() => m_buttonClose.Select());
  }

  // severity: 0 information, 1 warning, 2 error. text: whole lines, but for the last one's end. What
  // the user has selected stays selected.
  public void Append(int severity, string text) {
    int start = m_textBox.SelectionStart, length = m_textBox.SelectionLength;
    m_textBox.Select(m_textBox.TextLength, 0);
    m_textBox.SelectionColor = s_colors[severity];
    m_textBox.SelectionFont = severity == 2 ? ErrorFont() : Font;
    m_textBox.SelectedText = text + "\n";
    if (length > 0) {
      m_textBox.Select(start, length);
    } else {
      m_textBox.Select(m_textBox.TextLength, 0);
      m_textBox.ScrollToCaret();
    }
  }

  // A font equal to the system's is not a changed one, so this cannot wait for OnFontChanged.
  Font ErrorFont() {
    if (m_errorFont == null) m_errorFont = new Font(Font, FontStyle.Bold);
    return m_errorFont;
  }

  protected override void OnFontChanged(EventArgs e) {
    base.OnFontChanged(e);
    DropErrorFont();
  }

  protected override void Dispose(bool disposing) {
    base.Dispose(disposing);
    if (disposing) DropErrorFont();
  }

  void DropErrorFont() {
    if (m_errorFont != null) m_errorFont.Dispose();
    m_errorFont = null;
  }

  // However the window goes: by its button, with the window of its owner, at the end of the host.
  protected override void OnHandleDestroyed(EventArgs e) {
    base.OnHandleDestroyed(e);
    if (!RecreatingHandle) Bridge.Guard(() => Bridge.SignalLogClosed());
  }

  void Copy() {
    string text = m_textBox.Text.Replace("\r\n", "\n").Replace("\n", Environment.NewLine);
    if (text.Length > 0) Clipboard.SetDataObject(text, true);
  }

  void Arrange() {
    int gap = Look.Gap(this);
    m_window.Padding = new Padding(2 * gap);
    m_textBox.Margin = new Padding(0, 0, 0, 2 * gap);
    Look.SizeButtons(m_buttonCopy, m_buttonClose);
    ClientSize = new Size(100 * gap, 64 * gap);
    MinimumSize = new Size(50 * gap, 32 * gap);
  }
}
}
