// The View menu, and the panes that it shows and hides.
#pragma once

class QMenu;
class QWidget;

namespace tav {

int vm_setup(QMenu *menu); // dims what is never available; whenever the menu opens

int vm_clip_tb_toggle(QWidget *widget); // shows or hides the clipboard toolbar
int vm_hotlist_toggle(
    QWidget *widget); // shows or hides the hotlist panel, and keeps that in the settings

// Named by the menu; they do nothing.
int vm_nav_tb_toggle(QWidget *widget);
int vm_misc_tb_toggle(QWidget *widget);
int vm_hotlist_tb_toggle(QWidget *widget);
int vm_path_tb_toggle(QWidget *widget);
int vm_filter_tb_toggle(QWidget *widget);
int vm_icon_toggle(QWidget *widget);
int vm_status_toggle(QWidget *widget);
int vm_text_and_images(QWidget *widget);
int vm_text_only(QWidget *widget);
int vm_images_only(QWidget *widget);

} // namespace tav
