using System;
using System.Collections.Generic;
using System.Drawing;
using System.Windows.Forms;

namespace Orv.Dialogs {

public enum ButtonSet { YesYesAllNoNoAllCancel, YesYesAllNoNoAll }

public enum IconKind { Info, Warning, Error }

public enum ButtonResult { None, Yes, YesToAll, No, NoToAll, Cancel }

// A question with answers for all cases to come.
public sealed class DialogMessageBox : Form {
  readonly PictureBox m_icon = new PictureBox { SizeMode = PictureBoxSizeMode.AutoSize };
  readonly Bitmap m_picture;
  readonly Label m_label = new Label { AutoSize = true, UseMnemonic = false };
  readonly Button m_buttonYes = new Button { Text = "&Yes" };
  readonly Button m_buttonYesAll = new Button { Text = "Yes to &All" };
  readonly Button m_buttonNo = new Button { Text = "&No" };
  readonly Button m_buttonNoAll = new Button { Text = "No &to All" };
  readonly Button m_buttonCancel = new Button { Text = "Cancel" };
  readonly TableLayoutPanel m_message = Look.Table(0, 100);
  readonly TableLayoutPanel m_window = Look.Table(100);
  readonly FlowLayoutPanel flowLayoutPanel1;
  readonly Button[] m_buttons;

  public ButtonResult Result { get; private set; }

  public DialogMessageBox(ButtonSet buttons, IconKind icon, string text) {
    Look.Prepare(this, "MessageBox");
    Name = "DialogMessageBox";
    FormBorderStyle = FormBorderStyle.FixedDialog;
    m_icon.Image = m_picture = PictureOf(icon).ToBitmap();
    m_label.Text = text.TrimEnd();
    m_buttons = ButtonsOf(buttons);
    flowLayoutPanel1 = Look.ButtonRow(m_buttons);
    m_message.Controls.Add(m_icon, 0, 0);
    m_message.Controls.Add(m_label, 1, 0);
    m_window.Controls.Add(m_message);
    m_window.Controls.Add(flowLayoutPanel1);
    Controls.Add(m_window);
    AcceptButton = m_buttonYes;
    CancelButton = m_buttons[m_buttons.Length - 1] == m_buttonCancel ? m_buttonCancel : m_buttonNo;
    Load += (sender, e) => Bridge.Guard(() => Arrange());
  }

  Button[] ButtonsOf(ButtonSet set) {
    Answer(m_buttonYes, ButtonResult.Yes);
    Answer(m_buttonYesAll, ButtonResult.YesToAll);
    Answer(m_buttonNo, ButtonResult.No);
    Answer(m_buttonNoAll, ButtonResult.NoToAll);
    Answer(m_buttonCancel, ButtonResult.Cancel);
    var buttons = new List<Button> { m_buttonYes, m_buttonYesAll, m_buttonNo, m_buttonNoAll };
    if (set == ButtonSet.YesYesAllNoNoAllCancel) buttons.Add(m_buttonCancel);
    return buttons.ToArray();
  }

  void Answer(Button button, ButtonResult result) {
    button.Click += (sender, e) => Bridge.Guard(() => {
      Result = result;
      DialogResult = DialogResult.OK;
    });
  }

  static Icon PictureOf(IconKind icon) {
    switch (icon) {
      case IconKind.Error: return SystemIcons.Error;
      case IconKind.Warning: return SystemIcons.Warning;
      default: return SystemIcons.Information;
    }
  }

  protected override void Dispose(bool disposing) {
    if (disposing) m_picture.Dispose();
    base.Dispose(disposing);
  }

  // A long line is broken, at the latest where the screen would end.
  void Arrange() {
    int gap = Look.Gap(this);
    m_window.Padding = new Padding(2 * gap);
    m_icon.Margin = new Padding(0, 0, 2 * gap, 2 * gap);
    m_label.Margin = new Padding(0, 0, 0, 2 * gap);
    m_label.Anchor = AnchorStyles.Left;
    m_label.MaximumSize = new Size(Math.Min(100 * gap, Screen.GetWorkingArea(this).Width * 2 / 3),
                                   0);
    Look.SizeButtons(m_buttons);
    ClientSize = m_window.GetPreferredSize(Size.Empty);
  }
}
}
