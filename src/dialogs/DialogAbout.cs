using System.Drawing;
using System.Windows.Forms;

namespace Orv.Dialogs {

// The About box, for systems that have no dialog resources.
public sealed class DialogAbout : Form {
  static readonly Font s_font = new Font("MS Sans Serif", Look.FontSize);

  readonly Label m_name = new Label { Text = "Orv Exporter", AutoSize = true };
  readonly Label m_copyright = new Label { AutoSize = true, UseMnemonic = false };
  readonly Button m_buttonOk = new Button { Text = "OK", DialogResult = DialogResult.OK };
  readonly TableLayoutPanel m_window = Look.Table(100);

  public DialogAbout(string copyright) {
    Look.Prepare(this, "Dialog");
    Name = "DialogAbout";
    FormBorderStyle = FormBorderStyle.FixedDialog;
    Font = s_font;
    AcceptButton = m_buttonOk;
    CancelButton = m_buttonOk;
    m_copyright.Text = copyright;
    foreach (Control row in new Control[] { m_name, m_copyright, Look.ButtonRow(m_buttonOk) }) {
      m_window.Controls.Add(row);
    }
    Controls.Add(m_window);
    Load += (sender, e) => Bridge.Guard(() => Arrange());
  }

  void Arrange() {
    int gap = Look.Gap(this);
    m_window.Padding = new Padding(2 * gap);
    m_name.Margin = new Padding(0, 0, 0, gap);
    m_copyright.Margin = new Padding(0, 0, 0, 2 * gap);
    Look.SizeButtons(m_buttonOk);
    ClientSize = m_window.GetPreferredSize(Size.Empty);
  }
}
}
