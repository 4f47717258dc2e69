using System;
using System.Drawing;
using System.Windows.Forms;

namespace Orv.Dialogs {

// The options of one export. A record goes in; with DialogResult.OK it comes out as edited.
public sealed class DialogOptions : Form {
  readonly CheckBox m_checkExportGeometry = MakeCheck("Export &Geometry");
  readonly TableLayoutPanel m_panelGeometry = Look.Table(100);
  readonly CheckBox m_checkForceOverwriteTex = MakeCheck("Force &overwrite .texture.txt Files");
  readonly CheckBox m_checkCollectTextures = MakeCheck("&Collect textures to export folder");
  readonly CheckBox m_checkUseDefaultMatColors = MakeCheck("Use &default material colors");
  readonly CheckBox m_checkNormalMapFlipGreen = MakeCheck("Fli&p green channel on normal maps");

  readonly CheckBox m_checkExportAnimation = MakeCheck("Export &Animation");
  readonly TableLayoutPanel m_panelAnimation = Look.Table(0, 100, 0);
  readonly Label label1 = MakeLabel("&Event File Name");
  readonly TextBox m_textEventFile = new TextBox();
  readonly Button m_buttonEventFileSelect = new Button { Text = "&Browse..." };
  readonly Label label2 = MakeLabel("&First Frame");
  readonly NumericUpDown m_numericFrameFirst = new NumericUpDown();
  readonly Label label3 = MakeLabel("&Last Frame");
  readonly NumericUpDown m_numericFrameLast = new NumericUpDown();

  readonly Button m_buttonStart = new Button { Text = "&Start" };
  readonly Button m_buttonCancel = new Button { Text = "Cancel",
                                                DialogResult = DialogResult.Cancel };
  readonly TableLayoutPanel m_window = Look.Table(100);
  readonly FlowLayoutPanel m_buttons;
  bool m_isOrdering;

  public DialogOptions() {
    Look.Prepare(this, "Velmor Exporter Options");
    Name = "DialogOptions";
    AcceptButton = m_buttonStart;
    CancelButton = m_buttonCancel;

    foreach (CheckBox check in new[] { m_checkForceOverwriteTex, m_checkCollectTextures,
                                       m_checkUseDefaultMatColors, m_checkNormalMapFlipGreen }) {
      m_panelGeometry.Controls.Add(check);
    }
    m_panelAnimation.Controls.Add(label1, 0, 0);
    m_panelAnimation.Controls.Add(m_textEventFile, 1, 0);
    m_panelAnimation.Controls.Add(m_buttonEventFileSelect, 2, 0);
    m_panelAnimation.Controls.Add(label2, 0, 1);
    m_panelAnimation.Controls.Add(m_numericFrameFirst, 1, 1);
    m_panelAnimation.Controls.Add(label3, 0, 2);
    m_panelAnimation.Controls.Add(m_numericFrameLast, 1, 2);
    m_buttons = Look.ButtonRow(m_buttonStart, m_buttonCancel);
    foreach (Control row in new Control[] { m_checkExportGeometry, m_panelGeometry,
                                            m_checkExportAnimation, m_panelAnimation }) {
      m_window.Controls.Add(row);
      m_window.RowStyles.Add(new RowStyle());
    }
    m_window.Controls.Add(m_buttons);
    m_window.RowStyles.Add(new RowStyle(SizeType.Percent, 100));
    Controls.Add(m_window);
    ConnectEvents();
  }

  void ConnectEvents() {
    m_checkExportGeometry.CheckedChanged +=
        (sender, e) => Bridge.Guard(() => EnablePanels());
    m_checkExportAnimation.CheckedChanged +=
        (sender, e) => Bridge.Guard(() => EnablePanels());
    m_numericFrameFirst.ValueChanged +=
        (sender, e) => Bridge.Guard(() => KeepInOrder(m_numericFrameLast));
    m_numericFrameLast.ValueChanged +=
        (sender, e) => Bridge.Guard(() => KeepInOrder(m_numericFrameFirst));
    foreach (NumericUpDown box in new[] { m_numericFrameFirst, m_numericFrameLast }) {
      NumericUpDown left = box;
      box.Leave += (sender, e) => Bridge.Guard(() => TakeTyped(left));
    }
    m_buttonEventFileSelect.Click += (sender, e) => Bridge.Guard(() => SelectEventFile());
    m_buttonStart.Click += (sender, e) => Bridge.Guard(() => StartOrSayWhyNot());
    Load += (sender, e) => Bridge.Guard(() => Arrange());
  }

  public void Take(OptionsRecord options) {
    m_checkExportGeometry.Checked = options.ExportGeometry != 0;
    m_checkExportAnimation.Checked = options.ExportAnimation != 0;
    m_checkForceOverwriteTex.Checked = options.ForceTxtOverwrite != 0;
    m_checkCollectTextures.Checked = options.CollectTextures != 0;
    m_checkUseDefaultMatColors.Checked = options.UseDefaultColors != 0;
    m_checkNormalMapFlipGreen.Checked = options.NormalMapFlipGreen != 0;
    m_isOrdering = true;  // not before both have their bounds
    SetRange(m_numericFrameFirst, options.ExportStartFrame, options);
    SetRange(m_numericFrameLast, options.ExportEndFrame, options);
    m_isOrdering = false;
    m_textEventFile.Text = MCUtil.ToString(options.EventFileName);
    EnablePanels();
  }

  // The name of the event file is left alone when nobody has changed it: its bytes need not be
  // characters.
  public void PutInto(ref OptionsRecord options) {
    options.ExportGeometry = m_checkExportGeometry.Checked ? 1 : 0;
    options.ExportAnimation = m_checkExportAnimation.Checked ? 1 : 0;
    options.ForceTxtOverwrite = m_checkForceOverwriteTex.Checked ? 1 : 0;
    options.CollectTextures = m_checkCollectTextures.Checked ? 1 : 0;
    options.UseDefaultColors = m_checkUseDefaultMatColors.Checked ? 1 : 0;
    options.NormalMapFlipGreen = m_checkNormalMapFlipGreen.Checked ? 1 : 0;
    options.ExportStartFrame = (int)m_numericFrameFirst.Value;
    options.ExportEndFrame = (int)m_numericFrameLast.Value;
    string eventFile = m_textEventFile.Text.Trim();
    bool changed = m_textEventFile.Text != MCUtil.ToString(options.EventFileName);
    options.NewEventFileName = changed ? MCUtil.StringToAnsi(eventFile) : IntPtr.Zero;
  }

  static CheckBox MakeCheck(string caption) {
    return new CheckBox { Text = caption, AutoSize = true };
  }

  static Label MakeLabel(string caption) {
    return new Label { Text = caption, AutoSize = true, Anchor = AnchorStyles.Left };
  }

  static void SetRange(NumericUpDown box, int value, OptionsRecord options) {
    int first = Math.Min(options.AnimationStartFrame, options.AnimationEndFrame);
    int last = Math.Max(options.AnimationStartFrame, options.AnimationEndFrame);
    box.Minimum = first;
    box.Maximum = last;
    box.Value = Math.Max(first, Math.Min(last, value));
  }

  // The box itself takes over what is typed in it, but not always before it is asked.
  static void TakeTyped(NumericUpDown box) {
    decimal typed;
    if (decimal.TryParse(box.Text, out typed))
      box.Value = Math.Max(box.Minimum, Math.Min(box.Maximum, decimal.Truncate(typed)));
  }

  // follower: gives way when the first frame would stand behind the last one. Reading the value of
  // a box can change it, hence the flag.
  void KeepInOrder(NumericUpDown follower) {
    if (m_isOrdering) return;
    m_isOrdering = true;
    decimal first = m_numericFrameFirst.Value, last = m_numericFrameLast.Value;
    if (first > last) follower.Value = follower == m_numericFrameLast ? first : last;
    m_isOrdering = false;
  }

  void EnablePanels() {
    m_panelGeometry.Enabled = m_checkExportGeometry.Checked;
    m_panelAnimation.Enabled = m_checkExportAnimation.Checked;
  }

  void SelectEventFile() {
    string picked = EventFilePicker.Pick(this, "Select Event File", EventFilePicker.AllFilters,
                                         m_textEventFile.Text);
    if (picked != null) m_textEventFile.Text = picked;
  }

  void StartOrSayWhyNot() {
    TakeTyped(m_numericFrameFirst);
    TakeTyped(m_numericFrameLast);
    if (m_checkExportGeometry.Checked || m_checkExportAnimation.Checked) {
      DialogResult = DialogResult.OK;
      return;
    }
    MessageBox.Show(this,
                    "Please select Geometry and/or Animation\nin order to export something,\n" +
                        "or click Cancel to exit.\n",
                    "Nothing to export");
  }

  // Distances and sizes by the font; the window can be made larger from there, not smaller.
  void Arrange() {
    int gap = Look.Gap(this);
    m_window.Padding = new Padding(2 * gap);
    foreach (CheckBox check in new[] { m_checkExportGeometry, m_checkExportAnimation }) {
      check.Margin = new Padding(0, 0, 0, gap);
    }
    foreach (Control panel in new Control[] { m_panelGeometry, m_panelAnimation }) {
      panel.Margin = new Padding(3 * gap, 0, 0, 2 * gap);
    }
    foreach (Control check in m_panelGeometry.Controls) check.Margin = new Padding(0, 0, 0, gap);
    foreach (Control control in m_panelAnimation.Controls) {
      control.Margin = new Padding(0, 0, gap, gap);
    }
    Look.SizeButtons(m_buttonStart, m_buttonCancel);
    Look.SizeButtons(m_buttonEventFileSelect);
    m_buttonEventFileSelect.Margin = new Padding(0, 0, 0, gap);
    m_buttonEventFileSelect.Height = m_textEventFile.PreferredHeight + 2;
    m_textEventFile.Anchor = AnchorStyles.Left | AnchorStyles.Right;
    m_textEventFile.MinimumSize = new Size(36 * gap, 0);
    m_numericFrameFirst.Width = m_numericFrameLast.Width = 14 * gap;
    m_buttons.Anchor = AnchorStyles.Right | AnchorStyles.Bottom;
    ClientSize = m_window.GetPreferredSize(Size.Empty);
    MinimumSize = Size;
  }
}
}
